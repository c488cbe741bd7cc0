#pragma once

#include "formats/PngChunks.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace dubrix {

/// Writes one PNG stream from rows that are filtered already, into memory.
class PngWriter {
public:
    /// How the rows are deflated.
    enum class Packing {
        stored, ///< not compressed: for a stream that is decoded at once and thrown away
        fast,   ///< for files that are written while the user waits
    };

    PngWriter(const PngHeader& header, Packing packing);
    ~PngWriter();
    PngWriter(const PngWriter&) = delete;
    PngWriter& operator=(const PngWriter&) = delete;

    /// Adds a chunk that stands between the header and the rows.
    void addChunk(std::string_view type, std::string_view data);

    /// Adds the next row: its filter byte and its filtered bytes. Of an interlaced image the rows
    /// of each pass in turn.
    void addRow(std::string_view filteredRow);

    /// The whole stream, once; nothing when the memory did not suffice.
    std::optional<std::string> finish();

private:
    struct Deflater;

    std::string stream_;
    std::unique_ptr<Deflater> deflater_;
};

} // namespace dubrix
