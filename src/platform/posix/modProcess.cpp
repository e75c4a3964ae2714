#include "modProcess.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

std::vector<std::string> WordsOf(const std::string& path, const std::vector<std::string>& arguments)
{
    std::vector<std::string> words{path};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
}

/// The form in which the system takes words; null at its end.
std::vector<char*> PointersTo(std::vector<std::string>* words)
{
    std::vector<char*> pointers;
    pointers.reserve(words->size() + 1);
    for (std::string& word : *words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// The status with which a child ended; -1, which is no exit, when there is none to wait for.
int WaitFor(pid_t child)
{
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) {
            return -1;
        }
    }
    return status;
}

} // namespace

bool ErrorsGoToTerminal()
{
    return isatty(STDERR_FILENO) != 0;
}

std::string ProgramFile(const std::string& path)
{
    return path;
}

int RunProgram(const std::string& path, const std::vector<std::string>& arguments)
{
    std::vector<std::string> words = WordsOf(path, arguments);
    const std::vector<char*> pointers = PointersTo(&words);
    pid_t child = 0;
    if (posix_spawn(&child, path.c_str(), nullptr, nullptr, pointers.data(), environ) != 0) {
        return -1;
    }
    const int status = WaitFor(child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

namespace {

/// The two ends of a pipe; closed with the end of its life.
struct Pipe {
    int Ends[2] = {-1, -1};

    Pipe() = default;
    ~Pipe()
    {
        Close(0);
        Close(1);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    bool Open() { return pipe2(Ends, O_CLOEXEC) == 0; }
    void Close(size_t end)
    {
        if (Ends[end] >= 0) {
            (void)close(Ends[end]);
            Ends[end] = -1;
        }
    }
};

void Limit(decltype(RLIMIT_AS) resource, rlim_t value, rlim_t hard)
{
    const rlimit limit{value, hard};
    (void)setrlimit(resource, &limit);
}

/// What the child does between fork and its program: nothing but system calls.
[[noreturn]] void BecomeProgram(char* const* words, const ProgramLimits& limits, int output, int errors)
{
    const int nothing = open("/dev/null", O_RDONLY);
    (void)dup2(nothing, STDIN_FILENO);
    (void)dup2(output, STDOUT_FILENO);
    (void)dup2(errors, STDERR_FILENO);
    if (limits.Memory > 0) {
        Limit(RLIMIT_AS, limits.Memory, limits.Memory);
    }
    if (limits.Seconds > 0) {
        Limit(RLIMIT_CPU, limits.Seconds, limits.Seconds + 1);
    }
    // It writes no file, not even of its memory. A write that is refused gives an error instead of a signal.
    Limit(RLIMIT_CORE, 0, 0);
    Limit(RLIMIT_FSIZE, 0, 0);
    (void)signal(SIGXFSZ, SIG_IGN);
    (void)execv(words[0], words);
    constexpr int notFound = 127;
    _exit(notFound);
}

/// Takes what waits at a pipe. False at its end.
bool TakeFrom(Pipe* pipe, size_t most, std::string* text, bool* tooMuch)
{
    std::array<char, size_t{1} << 16> piece{};
    const ssize_t count = read(pipe->Ends[0], piece.data(), piece.size());
    if (count < 0 && errno == EINTR) {
        return true;
    }
    if (count <= 0) {
        pipe->Close(0);
        return false;
    }
    const size_t taken = std::min(static_cast<size_t>(count), most - text->size());
    text->append(piece.data(), taken);
    *tooMuch = taken < static_cast<size_t>(count);
    return true;
}

/// Collects both texts until the child has closed them. False when it says more than it may.
bool Collect(const ProgramLimits& limits, Pipe* output, Pipe* errors, ProgramEnd* end)
{
    while (output->Ends[0] >= 0 || errors->Ends[0] >= 0) {
        std::array<pollfd, 2> waiting{{{output->Ends[0], POLLIN, 0}, {errors->Ends[0], POLLIN, 0}}};
        if (poll(waiting.data(), waiting.size(), -1) < 0 && errno != EINTR) {
            return false;
        }
        bool tooMuch = false;
        if (waiting[0].revents != 0 && TakeFrom(output, limits.Output, &end->Output, &tooMuch) && tooMuch) {
            return false;
        }
        if (waiting[1].revents != 0) {
            (void)TakeFrom(errors, limits.Errors, &end->Errors, &tooMuch);
        }
    }
    return true;
}

} // namespace

bool RunLimited(const std::string& path, const std::vector<std::string>& arguments, const ProgramLimits& limits,
                ProgramEnd* end, std::string* error)
{
    Pipe output;
    Pipe errors;
    std::vector<std::string> words = WordsOf(path, arguments);
    const std::vector<char*> pointers = PointersTo(&words);
    const pid_t child = output.Open() && errors.Open() ? fork() : -1;
    if (child < 0) {
        *error = std::generic_category().message(errno);
        return false;
    }
    if (child == 0) {
        BecomeProgram(pointers.data(), limits, output.Ends[1], errors.Ends[1]);
    }
    output.Close(1);
    errors.Close(1);
    bool whole = false;
    try {
        whole = Collect(limits, &output, &errors, end);
    } catch (...) {
        (void)kill(child, SIGKILL);
        (void)WaitFor(child);
        throw;
    }
    if (!whole) {
        (void)kill(child, SIGKILL);
    }
    const int status = WaitFor(child);
    end->Code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    const bool killed = WIFSIGNALED(status) && (WTERMSIG(status) == SIGXCPU || WTERMSIG(status) == SIGKILL);
    end->Stopped = !whole || killed;
    return true;
}

bool IsSameFile(const std::string& a, const std::string& b)
{
    struct stat first {};
    struct stat second {};
    return stat(a.c_str(), &first) == 0 && stat(b.c_str(), &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}
