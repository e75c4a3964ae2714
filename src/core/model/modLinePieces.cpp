#include "model/modLinePieces.h"

#include <cstring>

namespace {

constexpr size_t pieceSize = size_t{256} << 10;

/// How many bytes the whole lines at the start of `text` have. A CR at its end does not end a line yet: an LF may
/// follow.
size_t SizeOfWholeLines(std::string_view text)
{
    const size_t lineEnd = text.substr(0, text.empty() ? 0 : text.size() - 1).rfind('\r');
    return lineEnd == std::string_view::npos ? 0 : lineEnd + (text[lineEnd + 1] == '\n' ? 2 : 1);
}

} // namespace

bool ReadInPieces(OpenedFile* file, const LineTaker& take, std::string* error)
{
    std::string buffer(pieceSize, '\0');
    size_t kept = 0;     // bytes at the start of the buffer that belong to a line not taken yet
    size_t position = 0; // of the buffer in the file
    for (bool last = false; !last;) {
        if (kept + 1 == buffer.size()) {
            buffer.resize(2 * buffer.size()); // a line longer than the buffer
        }
        const size_t room = buffer.size() - 1 - kept;
        size_t count = 0;
        if (!ReadOn(file, buffer.data() + kept, room, &count, error)) {
            return false;
        }
        size_t filled = kept + count;
        last = count < room;
        if (last && filled > 0 && buffer[filled - 1] != '\r') {
            buffer[filled++] = '\r';
        }
        const size_t whole = last ? filled : SizeOfWholeLines({buffer.data(), filled});
        if (!take({buffer.data(), whole}, position)) {
            return false;
        }
        kept = filled - whole;
        position += whole;
        std::memmove(buffer.data(), buffer.data() + whole, kept);
    }
    return true;
}
