#pragma once

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "model/modMvmCommon.h"
#include "platform/modFiles.h"

// A model file in chunks of whole lines. One thread, the taker, reads the file and gets the chunks in their order; others
// read the common lines of the chunks ahead of it. They see nothing but their chunk.

inline size_t ChunkBytes = size_t{128} << 10; ///< text of a chunk, more only for a longer line; from 1 on
inline size_t ThreadedFrom = size_t{2} << 20; ///< a file below this many bytes is left to the taker alone

/// Threads that help the taker with a file. More would wait for it.
inline unsigned ReaderThreads = std::min(std::max(std::thread::hardware_concurrency(), 1U) - 1, 4U);

struct TextChunk {
    std::string Memory; ///< the text and, behind it, what ReadCommonLines needs
    size_t Size = 0;    ///< of the text
    CommonLines Lines;
    bool Done = false;          ///< Lines is complete, or Failure says why not
    std::exception_ptr Failure; ///< what reading the lines threw
};

/// Ring[n % Ring.size()] holds chunk n, for n from Taken up to Filled. Its end waits for its threads.
struct ChunksAhead {
    OpenedFile* File = nullptr;
    bool FileEnded = false;
    std::string Failure; ///< why the file could not be read on; empty while it can
    std::string Rest;    ///< the begin of a line that the last chunk did not hold to its end
    std::vector<TextChunk> Ring;
    size_t TextAhead = 0; ///< bytes of text in these chunks
    size_t Taken = 0;
    bool Started = false; ///< chunk Taken is with the taker

    std::mutex Guard;              ///< of Claimed, Filled, Over and each chunk's Done
    std::condition_variable Work;  ///< for the readers: there is a chunk to claim, or it is over
    std::condition_variable Ready; ///< for the taker: a chunk is done
    size_t Claimed = 0;            ///< the chunks before this one are being read or done
    size_t Filled = 0;
    bool Over = false;
    std::vector<std::jthread> Readers;

    ChunksAhead() = default;
    ~ChunksAhead();
    ChunksAhead(const ChunksAhead&) = delete;
    ChunksAhead& operator=(const ChunksAhead&) = delete;
};

/// Makes fresh *ahead give the chunks of a fresh *file, which must outlive it.
void StartChunks(OpenedFile* file, ChunksAhead* ahead);

/// The next chunk, valid until the next call; nullptr behind the last one. False, behind the chunks read before,
/// when the file cannot be read on. Throws what reading the chunk's lines threw.
bool NextChunk(ChunksAhead* ahead, const TextChunk** chunk, std::string* error);
