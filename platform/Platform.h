#pragma once

namespace dubrix {

class ApplicationList;
class ApplicationWorkspace;
class ByteCountFormatter;
class CommandRunner;
class DeviceClaim;
class Downloader;
class FileManager;
class MonochromeFilter;
class SystemLog;

/// Everything the clone engine asks of its platform. The objects outlive every user of the struct.
struct Platform {
    CommandRunner& commands;
    FileManager& files;
    ApplicationWorkspace& workspace;
    ApplicationList& applications;
    MonochromeFilter& monochrome;
    ByteCountFormatter& byteCounts;
    SystemLog& log;
    Downloader& downloader;
    DeviceClaim& device;
};

} // namespace dubrix
