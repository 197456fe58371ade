// What a request to the local window server takes, against a bare window message to a window that does no more
// than any server must. Windows only; bench/run.sh runs it against a stand-in with the plug-in:
//
//   request_latency_win32 REQUESTS RECORDS
#include <chrono>

#include "client_block.h"
#include "load_modes.h"

namespace {

using Clock = std::chrono::steady_clock;

double Microseconds(Clock::duration duration) {
  return std::chrono::duration<double, std::micro>(duration).count();
}

// The helper process has a window that does what any server must: find, open and map the block.
LRESULT CALLBACK HelperProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_CLOSE) PostQuitMessage(0);
  if (message != WM_APP) return DefWindowProcA(window, message, wParam, lParam);
  char name[260] = "";
  if (GlobalGetAtomNameA(static_cast<ATOM>(wParam), name, sizeof name) == 0) return 0;
  HANDLE mapping = OpenFileMappingA(FILE_MAP_WRITE, FALSE, name);
  if (mapping == nullptr) return 0;
  const void* view = MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 0);
  const LRESULT result = view != nullptr && LoadFrom<uint32_t>(view) == 1;
  if (view != nullptr) UnmapViewOfFile(view);
  CloseHandle(mapping);
  return result;
}

// Runs until its window is closed or `parent` (a process id) has ended.
int RunLatencyHelper(const char* parent) {
  const std::string name = std::string("CRAFTEDHELPER:") + parent;
  WNDCLASSEXA windowClass = {};
  windowClass.cbSize = sizeof windowClass;
  windowClass.lpfnWndProc = HelperProcedure;
  windowClass.hInstance = GetModuleHandleA(nullptr);
  windowClass.lpszClassName = name.c_str();
  if (RegisterClassExA(&windowClass) == 0) return 1;
  HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, static_cast<DWORD>(std::stoul(parent)));
  if (process == nullptr) return 1;
  if (CreateWindowExA(0, name.c_str(), name.c_str(), WS_POPUP, 0, 0, 10, 10, nullptr, nullptr,
                      windowClass.hInstance, nullptr) == nullptr) {
    return 1;
  }
  MSG message;
  while (MsgWaitForMultipleObjects(1, &process, FALSE, INFINITE, QS_ALLINPUT) == WAIT_OBJECT_0 + 1) {
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
      if (message.message == WM_QUIT) return 0;
      DispatchMessageA(&message);
    }
  }
  return 0;
}

double Median(std::vector<double>* values) {
  std::sort(values->begin(), values->end());
  return (*values)[values->size() / 2];
}

// Alternates between the two, so that whatever else the computer does meets both.
int RunLatency(const Server& server, uint32_t requests, uint32_t records) {
  const std::string parent = std::to_string(GetCurrentProcessId());
  const std::string helperName = "CRAFTEDHELPER:" + parent;
  HANDLE helper = StartSelf("latency-helper " + parent);
  Server bare = {nullptr, WM_APP};
  for (int attempt = 0; attempt < 200 && helper != nullptr && bare.window == nullptr; ++attempt) {
    bare.window = FindWindowA(helperName.c_str(), helperName.c_str());
    if (bare.window == nullptr) Sleep(50);
  }
  ClientBlock block;
  const bool ready = MakeBlock(std::max(records, 1u) * 20 + 4, &block);
  if (bare.window == nullptr || !ready) {
    std::printf("latency: FAILED: no helper process\n");
    if (helper != nullptr) FinishProcess(helper, 0);
    return 1;
  }
  RecordWriter writer = {block.view, 0};
  for (uint32_t i = 0; i < std::max(records, 1u); ++i) writer.Read(0x0560 + 8 * (i % 64), 4);
  writer.End();
  std::vector<double> served;
  std::vector<double> sent;
  uint32_t errors = 0;
  for (uint32_t i = 0; i < std::max(requests, 1u); ++i) {
    const Clock::time_point start = Clock::now();
    errors += Call(server, block.atom) != 1;
    const Clock::time_point middle = Clock::now();
    errors += Call(bare, block.atom) != 1;
    served.push_back(Microseconds(middle - start));
    sent.push_back(Microseconds(Clock::now() - middle));
  }
  FreeBlock(&block);
  PostMessageA(bare.window, WM_CLOSE, 0, 0);
  FinishProcess(helper, 5000);
  const double request = Median(&served);
  const double message = Median(&sent);
  std::printf("latency: %s, request of %u records %.1f us, bare message %.1f us, ratio %.2f\n",
              errors == 0 ? "ok" : "FAILED", records, request, message, request / message);
  return errors != 0;
}

}  // namespace

int main(int count, char** words) {
  if (count == 3 && std::strcmp(words[1], "latency-helper") == 0) return RunLatencyHelper(words[2]);
  Server server;
  if (count != 3 || !FindServer(&server)) {
    std::printf("usage: request_latency_win32 REQUESTS RECORDS, with a window KORLMAIN there\n");
    return 2;
  }
  return RunLatency(server, static_cast<uint32_t>(std::strtoul(words[1], nullptr, 0)),
                    static_cast<uint32_t>(std::strtoul(words[2], nullptr, 0)));
}
