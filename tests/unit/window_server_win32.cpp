// The hidden window from within the program that holds it: what only code on the window's own thread can do.
// Other programs' attempts are in the end-to-end tests.
#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <filesystem>

#include "base/locks.h"
#include "base/log.h"
#include "clients/client_block.h"
#include "offsets/window_server.h"
#include "test_tools.h"

namespace {

std::atomic<HWND> toDestroy;

// Runs on the server's thread whenever that takes a message.
LRESULT CALLBACK DestroyFromWithin(int code, WPARAM wParam, LPARAM lParam) {
  if (const HWND window = toDestroy.exchange(nullptr)) DestroyWindow(window);
  return CallNextHookEx(nullptr, code, wParam, lParam);
}

struct WindowServer : testing::Test {
  std::filesystem::path root = std::filesystem::path(testing::TempDir()) / "tavrix_window_test";
  Server server = {};

  void SetUp() override {
    std::filesystem::remove_all(root);
    OpenLogs((root.string() + "\\").c_str(), [](const char*) {});
    ASSERT_TRUE(CreateLocks());
    ASSERT_TRUE(StartWindowServer());
    ASSERT_TRUE(FindServer(&server));
  }
  void TearDown() override {
    StopWindowServer();
    DeleteLocks();
    CloseLogs();
    std::filesystem::remove_all(root);
  }
  int LinesWith(const std::string& text) const {
    return tools::CountText(tools::ReadFile(root / "TAVRIX.txt"), text);
  }
};

TEST_F(WindowServer, ALostWindowIsMadeAnewAndServes) {
  const DWORD thread = GetWindowThreadProcessId(server.window, nullptr);
  const HHOOK hook = SetWindowsHookExA(WH_GETMESSAGE, DestroyFromWithin, nullptr, thread);
  ASSERT_NE(hook, nullptr);
  ClientBlock block;
  ASSERT_TRUE(MakeBlock(64, &block));
  for (int round = 1; round <= 3; ++round) {
    toDestroy = server.window;
    PostMessageA(server.window, WM_APP, 0, 0);
    ASSERT_TRUE(tools::WaitUntil([&] { return LinesWith("Register of joystickcapturewindow") == round + 1; }));
    const HWND old = server.window;
    ASSERT_TRUE(FindServer(&server));
    EXPECT_NE(server.window, old);
    EXPECT_EQ(Call(server, block.atom), 1);
    EXPECT_EQ(LinesWith("Create KORLMain Window OK!"), round + 1);
    EXPECT_EQ(LinesWith("Register KORLMain Call message OK!"), round + 1);
  }
  FreeBlock(&block);
  UnhookWindowsHookEx(hook);
}

TEST_F(WindowServer, StartsAndStopsAgainAndAgain) {
  for (int round = 0; round < 20; ++round) {
    StopWindowServer();
    EXPECT_EQ(FindWindowA("KORLMAIN", "KORLMAIN"), nullptr);
    ASSERT_TRUE(StartWindowServer());
    ASSERT_TRUE(FindServer(&server));
  }
  EXPECT_EQ(LinesWith("TAVRIX->Closed KORLMain Thread!"), 20);
}

// A client that asks in vain many times a second makes one line a reason, and each says what to do.
TEST_F(WindowServer, UnreachableBlocksAreToldOnceAReason) {
  SECURITY_DESCRIPTOR nobody = {};
  ACL empty = {};
  InitializeSecurityDescriptor(&nobody, SECURITY_DESCRIPTOR_REVISION);
  InitializeAcl(&empty, sizeof empty, ACL_REVISION);
  SetSecurityDescriptorDacl(&nobody, TRUE, &empty, FALSE);
  SECURITY_ATTRIBUTES closed = {sizeof closed, &nobody, FALSE};
  const HANDLE mapping =
      CreateFileMappingA(INVALID_HANDLE_VALUE, &closed, PAGE_READWRITE, 0, 4096, "CRAFTED:CLOSED");
  ASSERT_NE(mapping, nullptr);
  const HANDLE event = CreateEventA(nullptr, TRUE, FALSE, "CRAFTED:EVENT");
  const struct {
    const char* name;
    const char* shown;
    const char* remedy;
  } cases[] = {
      {"CRAFTED:NO\nWHERE", "CRAFTED:NO\\nWHERE", "the client has ended"},
      {"CRAFTED:CLOSED", "CRAFTED:CLOSED", "start the simulator and the client as the same user"},
      {"CRAFTED:EVENT", "CRAFTED:EVENT", "tell the client's author"},
  };
  for (int round = 0; round < 100; ++round) {
    for (const auto& one : cases) {
      const ATOM atom = GlobalAddAtomA(one.name);
      EXPECT_EQ(Call(server, atom), 0) << one.name;
      GlobalDeleteAtom(atom);
    }
  }
  for (const auto& one : cases) {
    EXPECT_EQ(
        LinesWith(std::string("The shared memory ") + one.shown + " of a local client cannot be opened ("), 1);
    EXPECT_EQ(LinesWith(one.remedy), 1);
  }
  CloseHandle(event);
  CloseHandle(mapping);
}

}  // namespace
