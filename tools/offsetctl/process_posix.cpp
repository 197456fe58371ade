#if !defined(_WIN32)

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "process.h"

namespace ctl {

namespace {

constexpr int noProgram = 127;  // exit status, as shells have it

struct Pipe {
  int read = -1, write = -1;
};

bool OpenPipe(Pipe* opened) {
  int ends[2];
  if (pipe(ends) != 0) return false;
  for (const int end : ends) fcntl(end, F_SETFD, FD_CLOEXEC);
  *opened = {ends[0], ends[1]};
  return true;
}

void Close(intptr_t* end) {
  if (*end >= 0) close(static_cast<int>(*end));
  *end = -1;
}

void ClosePipe(const Pipe& opened) {
  if (opened.read >= 0) close(opened.read);
  if (opened.write >= 0) close(opened.write);
}

// In the new process: returns only when the program cannot be started.
void Become(const std::vector<std::string>& words, const Environment& environment, const Pipe (&pipes)[3]) {
  setpgid(0, 0);
  signal(SIGPIPE, SIG_DFL);
  dup2(pipes[0].read, STDIN_FILENO);
  dup2(pipes[1].write, STDOUT_FILENO);
  dup2(pipes[2].write, STDERR_FILENO);
  for (const auto& [name, value] : environment) setenv(name.c_str(), value.c_str(), 1);
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  execvp(arguments[0], arguments.data());
}

void ReadWhatIsThere(intptr_t end, std::string* text) {
  char part[4096];
  ssize_t size = 0;
  const size_t most = text->size() + mostAtOnce;
  while (end >= 0 && text->size() < most && (size = read(static_cast<int>(end), part, sizeof part)) > 0) {
    text->append(part, static_cast<size_t>(size));
  }
  LimitText(text);
}

}  // namespace

bool StartProcess(const std::vector<std::string>& words, const Environment& environment, Process* process,
                  std::string* error) {
  *process = {};
  signal(SIGPIPE, SIG_IGN);  // a client that has ended does not take us with it
  Pipe pipes[3], failure;
  bool isOpen = OpenPipe(&failure);
  for (Pipe& one : pipes) isOpen = isOpen && OpenPipe(&one);
  const pid_t id = isOpen ? fork() : -1;
  if (id == 0) {
    Become(words, environment, pipes);
    const int reason = errno;
    if (write(failure.write, &reason, sizeof reason) != sizeof reason) _exit(noProgram);
    _exit(noProgram);
  }
  int reason = errno;
  bool isStarted = id > 0;
  if (isStarted) {
    close(failure.write);
    failure.write = -1;
    // Ends without a byte when the program has taken the process over.
    isStarted = read(failure.read, &reason, sizeof reason) != sizeof reason;
    if (!isStarted) waitpid(id, nullptr, 0);
  }
  ClosePipe(failure);
  if (!isStarted) {
    for (const Pipe& one : pipes) ClosePipe(one);
    *error = "cannot start " + words[0] + " (" + std::strerror(reason) + ")";
    return false;
  }
  close(pipes[0].read);
  close(pipes[1].write);
  close(pipes[2].write);
  fcntl(pipes[1].read, F_SETFL, O_NONBLOCK);
  fcntl(pipes[2].read, F_SETFL, O_NONBLOCK);
  process->id = process->group = id;
  process->input = pipes[0].write;
  process->output = pipes[1].read;
  process->errors = pipes[2].read;
  return true;
}

void SendLine(Process* process, const std::string& line) {
  const std::string text = line + "\n";
  if (process->input >= 0 && write(static_cast<int>(process->input), text.data(), text.size()) < 0) {
    Close(&process->input);
  }
}

void CloseInput(Process* process) { Close(&process->input); }

std::vector<std::string> TakeLines(Process* process) {
  ReadWhatIsThere(process->errors, &process->errorText);
  ReadWhatIsThere(process->output, &process->pending);
  return CutLines(&process->pending);
}

bool HasEnded(Process* process, int* status) {
  if (process->id < 0) return true;
  int result = 0;
  if (waitpid(static_cast<pid_t>(process->id), &result, WNOHANG) == 0) return false;
  process->id = -1;
  *status = WIFEXITED(result) ? WEXITSTATUS(result) : 128 + WTERMSIG(result);
  return true;
}

void EndProcess(Process* process) {
  if (process->group > 0) kill(-static_cast<pid_t>(process->group), SIGKILL);
  if (process->id > 0) waitpid(static_cast<pid_t>(process->id), nullptr, 0);
  Close(&process->input);
  Close(&process->output);
  Close(&process->errors);
  process->id = process->group = -1;
}

}  // namespace ctl

#endif
