#if defined(_WIN32)

#include <windows.h>

#include "process.h"

namespace ctl {

namespace {

HANDLE Native(intptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

void Close(intptr_t* handle) {
  if (*handle != -1) CloseHandle(Native(*handle));
  *handle = -1;
}

// `inherited` goes to the program, `kept` stays here.
bool OpenPipe(bool programReads, HANDLE* inherited, intptr_t* kept) {
  SECURITY_ATTRIBUTES attributes = {sizeof attributes, nullptr, TRUE};
  HANDLE read = nullptr, write = nullptr;
  if (!CreatePipe(&read, &write, &attributes, 0)) return false;
  const HANDLE own = programReads ? write : read;
  *inherited = programReads ? read : write;
  *kept = reinterpret_cast<intptr_t>(own);
  SetHandleInformation(own, HANDLE_FLAG_INHERIT, 0);
  return true;
}

// As the system's own rules take a word back out of a command line.
std::string Quoted(const std::string& word) {
  if (!word.empty() && word.find_first_of(" \t\"") == std::string::npos) return word;
  std::string quoted = "\"";
  size_t backslashes = 0;
  for (const char letter : word) {
    if (letter == '"') quoted.append(backslashes + 1, '\\');
    backslashes = letter == '\\' ? backslashes + 1 : 0;
    quoted += letter;
  }
  quoted.append(backslashes, '\\');
  return quoted + "\"";
}

void ReadWhatIsThere(intptr_t handle, std::string* text) {
  DWORD there = 0;
  const size_t most = text->size() + mostAtOnce;
  while (handle != -1 && text->size() < most &&
         PeekNamedPipe(Native(handle), nullptr, 0, nullptr, &there, nullptr) && there > 0) {
    char part[4096];
    DWORD size = 0;
    if (!ReadFile(Native(handle), part, sizeof part, &size, nullptr) || size == 0) return;
    text->append(part, size);
  }
  LimitText(text);
}

}  // namespace

bool StartProcess(const std::vector<std::string>& words, const Environment& environment, Process* process,
                  std::string* error) {
  *process = {};
  for (const auto& [name, value] : environment) SetEnvironmentVariableA(name.c_str(), value.c_str());
  STARTUPINFOA startup = {};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = startup.hStdOutput = startup.hStdError = nullptr;
  OpenPipe(true, &startup.hStdInput, &process->input);
  OpenPipe(false, &startup.hStdOutput, &process->output);
  OpenPipe(false, &startup.hStdError, &process->errors);
  std::string line;
  for (const std::string& word : words) line += (line.empty() ? "" : " ") + Quoted(word);
  PROCESS_INFORMATION started = {};
  // A job ends with its last handle, and with it everything that the program has started.
  const HANDLE job = CreateJobObjectA(nullptr, nullptr);
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
  process->group = reinterpret_cast<intptr_t>(job);
  const BOOL isStarted = CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED, nullptr,
                                        nullptr, &startup, &started);
  const DWORD reason = GetLastError();
  for (const HANDLE handle : {startup.hStdInput, startup.hStdOutput, startup.hStdError}) CloseHandle(handle);
  if (!isStarted) {
    EndProcess(process);
    *error = "cannot start " + words[0] + " (system error " + std::to_string(reason) + ")";
    return false;
  }
  AssignProcessToJobObject(job, started.hProcess);
  ResumeThread(started.hThread);
  CloseHandle(started.hThread);
  process->id = reinterpret_cast<intptr_t>(started.hProcess);
  return true;
}

void SendLine(Process* process, const std::string& line) {
  const std::string text = line + "\n";
  DWORD written = 0;
  if (process->input != -1 &&
      !WriteFile(Native(process->input), text.data(), static_cast<DWORD>(text.size()), &written, nullptr)) {
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
  if (process->id == -1) return true;
  if (WaitForSingleObject(Native(process->id), 0) != WAIT_OBJECT_0) return false;
  DWORD code = 0;
  GetExitCodeProcess(Native(process->id), &code);
  *status = static_cast<int>(code);
  Close(&process->id);
  return true;
}

void EndProcess(Process* process) {
  if (process->id != -1) {
    TerminateProcess(Native(process->id), 1);
    WaitForSingleObject(Native(process->id), 5000);
  }
  Close(&process->group);
  Close(&process->id);
  Close(&process->input);
  Close(&process->output);
  Close(&process->errors);
}

}  // namespace ctl

#endif
