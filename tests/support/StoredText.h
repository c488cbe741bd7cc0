#pragma once

#include <string>
#include <string_view>

namespace dubrix {

class FileManager;
class SystemLog;

/// The text that the settings file holds under `key`; "absent" where it holds none.
std::string storedText(FileManager& files, SystemLog& log, std::string_view key);
void storeText(FileManager& files, SystemLog& log, std::string_view key, const std::string& text);

} // namespace dubrix
