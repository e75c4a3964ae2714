#include "model/modMvmAhead.h"

#include <cstring>
#include <string_view>
#include <system_error>

namespace {

/// Puts the next lines of the file into a chunk, none at the end of the file.
bool Fill(ChunksAhead* ahead, TextChunk* chunk, std::string* error)
{
    std::string& memory = chunk->Memory;
    const size_t room = std::max(ChunkBytes, 2 * ahead->Rest.size()) + commonPadding;
    if (memory.size() < room) {
        memory.resize(room);
    }
    size_t size = ahead->Rest.size();
    std::memcpy(memory.data(), ahead->Rest.data(), size);
    for (;;) {
        // What stands there has no line end, but for a CR at its last place that an LF may follow.
        const size_t from = size > 0 ? size - 1 : 0;
        size_t count = 0;
        if (!ReadOn(ahead->File, memory.data() + size, memory.size() - commonPadding - size, &count, error)) {
            return false;
        }
        size += count;
        ahead->FileEnded = size < memory.size() - commonPadding;
        chunk->Size = size;
        if (ahead->FileEnded) {
            break;
        }
        const char* const end = memory.data() + size;
        if (FindLineEnd(memory.data() + from, end - 1) != end - 1) {
            const size_t lineEnd = std::string_view(memory.data(), size - 1).rfind('\r');
            chunk->Size = static_cast<size_t>(BehindLine(memory.data() + lineEnd, end) - memory.data());
            break;
        }
        const size_t left = ahead->File->Expected - std::min(ahead->File->Taken, ahead->File->Expected);
        memory.resize(memory.size() + std::clamp(left + 1, ChunkBytes, memory.size()));
    }
    ahead->Rest.assign(memory, chunk->Size, size - chunk->Size);
    std::memset(memory.data() + chunk->Size, '\r', commonPadding);
    return true;
}

/// True when another chunk may be filled. Long lines must not bring the whole file into memory.
bool HasRoom(const ChunksAhead& ahead)
{
    const size_t count = ahead.Filled - ahead.Taken;
    return count == 0 || (count < ahead.Ring.size() && ahead.TextAhead < ahead.Ring.size() * ChunkBytes);
}

/// What the taker does with a chunk that it is done with.
void GiveBack(ChunksAhead* ahead, TextChunk* chunk)
{
    ahead->TextAhead -= chunk->Size;
    if (chunk->Memory.size() > 2 * ChunkBytes + commonPadding) {
        chunk->Memory = std::string(); // a long line; the next one is hardly that long
        chunk->Lines = CommonLines();
    }
}

/// Reads the lines of the first chunk that nobody has claimed; there is one. The lock is held before and after.
void ReadClaimed(ChunksAhead* ahead, std::unique_lock<std::mutex>* lock)
{
    TextChunk& chunk = ahead->Ring[ahead->Claimed++ % ahead->Ring.size()];
    lock->unlock();
    try {
        ReadCommonLines(chunk.Memory.data(), chunk.Size, &chunk.Lines);
    } catch (...) {
        chunk.Failure = std::current_exception();
    }
    lock->lock();
    chunk.Done = true;
}

void RunReader(ChunksAhead* ahead)
{
    std::unique_lock lock(ahead->Guard);
    for (;;) {
        ahead->Work.wait(lock, [ahead] { return ahead->Over || ahead->Claimed < ahead->Filled; });
        if (ahead->Over) {
            return;
        }
        ReadClaimed(ahead, &lock);
        ahead->Ready.notify_one();
    }
}

} // namespace

ChunksAhead::~ChunksAhead()
{
    {
        const std::lock_guard lock(Guard);
        Over = true;
    }
    Work.notify_all();
    Readers.clear();
}

void StartChunks(OpenedFile* file, ChunksAhead* ahead)
{
    ahead->File = file;
    const unsigned readers = file->Expected >= ThreadedFrom ? ReaderThreads : 0;
    ahead->Ring.resize(1 + size_t{3} * readers);
    ahead->Readers.reserve(readers);
    try {
        while (ahead->Readers.size() < readers) {
            ahead->Readers.emplace_back(RunReader, ahead);
        }
    } catch (const std::system_error&) {
        return; // the taker manages with those that it has
    }
}

bool NextChunk(ChunksAhead* ahead, const TextChunk** chunk, std::string* error)
{
    if (ahead->Started) {
        GiveBack(ahead, &ahead->Ring[ahead->Taken++ % ahead->Ring.size()]);
    }
    ahead->Started = true;
    *chunk = nullptr;
    // Only the taker changes Filled, and a chunk from there on is its own.
    while (!ahead->FileEnded && ahead->Failure.empty() && HasRoom(*ahead)) {
        TextChunk& next = ahead->Ring[ahead->Filled % ahead->Ring.size()];
        next.Done = false;
        if (!Fill(ahead, &next, &ahead->Failure)) {
            break; // told behind the chunks that were filled before
        }
        ahead->TextAhead += next.Size;
        {
            const std::lock_guard lock(ahead->Guard);
            ++ahead->Filled;
        }
        ahead->Work.notify_one();
    }
    if (ahead->Taken == ahead->Filled) {
        *error = ahead->Failure;
        return error->empty();
    }
    const TextChunk& first = ahead->Ring[ahead->Taken % ahead->Ring.size()];
    std::unique_lock lock(ahead->Guard);
    while (!first.Done) {
        if (ahead->Claimed < ahead->Filled) {
            ReadClaimed(ahead, &lock);
        } else {
            ahead->Ready.wait(lock);
        }
    }
    if (first.Failure) {
        std::rethrow_exception(first.Failure);
    }
    *chunk = &first;
    return true;
}
