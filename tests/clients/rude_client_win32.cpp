// A client of the local window server that breaks the rules, one rule for each mode:
//
//   rude_client_win32 MODE [argument...]
//
// Prints one line and exits with 0 when the server answered as it should, with 1 when it did not, with 2 for
// wrong usage or when there is no server. After each mode a plain request must be served still. What each
// mode expects stands at its function; load_modes.h has those that run for a while.
#include <cstdlib>
#include <tuple>

#include "client_block.h"
#include "load_modes.h"

namespace {

// A word that every mode finds set, to see that its reads are served.
constexpr uint32_t constantOffset = scratchOffset + 16;
constexpr uint32_t constantValue = 0x50A01B08;
constexpr uint32_t readOnlyOffset = 0x3304;
constexpr uint32_t memorySize = 0x20000;
constexpr uint32_t pageSize = 4096;

Server server;
std::string why;  // what went wrong, for the printed line

bool Expect(bool truth, const std::string& what) {
  if (!truth && why.empty()) why = what;
  return truth;
}

bool ExpectAnswer(WPARAM atom, int wanted, const char* what) {
  const int answer = Call(server, atom);
  return Expect(answer == wanted, std::string(what) + ": answered " +
                                      (answer == noAnswer ? "nothing" : std::to_string(answer)) + ", not " +
                                      std::to_string(wanted));
}

// Ends the records and sends them.
bool Send(ClientBlock* block, RecordWriter records, int wanted, const char* what) {
  records.End();
  return ExpectAnswer(block->atom, wanted, what);
}

// One word of the memory by a plain request of its own, after it was set when there is a value for it.
uint32_t Word(const char* what, uint32_t offset, const uint32_t* value = nullptr) {
  ClientBlock block;
  if (!Expect(MakeBlock(pageSize, &block), "no block")) return 0;
  RecordWriter records = {block.view, 0};
  if (value != nullptr) records.Write(offset, 4, value);
  const uint8_t* data = records.Read(offset, 4);
  const uint32_t word = Send(&block, records, 1, what) ? LoadFrom<uint32_t>(data) : 0;
  FreeBlock(&block);
  return word;
}

// A well-formed request of its own is served. Sets the constant word.
bool ExpectAlive() {
  Expect(Word("plain request", constantOffset, &constantValue) == constantValue, "plain request: wrong data");
  return why.empty();
}

uint32_t ReadWord(uint32_t offset) { return Word("reading back", offset); }

// Sets the scratch word to a value that no record of the mode under test holds.
void PrepareScratch(uint32_t value) { Word("preparing the scratch word", scratchOffset, &value); }

// Read, unknown type 7, write: 0, the read served, the type zeroed, the write not served.
void UnknownRecord(ClientBlock* block) {
  PrepareScratch(0x11111111);
  const uint32_t value = 0x22222222;
  RecordWriter records = {block->view, 0};
  const uint8_t* data = records.Read(constantOffset, 4);
  uint8_t* unknown = block->view + records.at;
  records.Word(7);
  records.Word(0x5A5A5A5A);
  records.Write(scratchOffset, 4, &value);
  Send(block, records, 0, "unknown record");
  Expect(LoadFrom<uint32_t>(data) == constantValue, "the read before it was not served");
  Expect(LoadFrom<uint32_t>(unknown) == 0 && LoadFrom<uint32_t>(unknown + 4) == 0x5A5A5A5A,
         "not just its type was zeroed");
  Expect(ReadWord(scratchOffset) == 0x11111111, "the write behind it was served");
}

// A write to a read-only offset is passed over: 1, nothing changed, the next write applied.
void ReadOnlyWrite(ClientBlock* block) {
  PrepareScratch(0);
  const uint32_t before = ReadWord(readOnlyOffset);
  const uint32_t value = ~before;
  RecordWriter records = {block->view, 0};
  records.Write(readOnlyOffset, 4, &value);
  records.Write(scratchOffset, 4, &value);
  const uint8_t* data = records.Read(readOnlyOffset, 4);
  Send(block, records, 1, "write to a read-only offset");
  Expect(LoadFrom<uint32_t>(data) == before, "a read-only offset was written");
  Expect(ReadWord(scratchOffset) == value, "the write behind it was not applied");
}

// A request at the start of 64 MiB: 1, and the whole memory is read in one record.
void HugeMapping(ClientBlock* block) {
  FreeBlock(block);
  if (!Expect(MakeBlock(64u << 20, block), "no block of 64 MiB")) return;
  RecordWriter records = {block->view, 0};
  const uint8_t* data = records.Read(0, memorySize);
  Send(block, records, 1, "huge block");
  Expect(LoadFrom<uint32_t>(data + constantOffset) == constantValue, "wrong data");
}

// Of 1 MiB of address space only the first page is there: records inside it are served, 1; one that runs
// into the rest is refused, 0.
void ReservedMapping(ClientBlock* block) {
  FreeBlock(block);
  if (!Expect(MakeBlock(1u << 20, block, PAGE_READWRITE | SEC_RESERVE), "no reserved block")) return;
  ExpectAnswer(block->atom, 0, "block without a page");
  if (!Expect(VirtualAlloc(block->view, pageSize, MEM_COMMIT, PAGE_READWRITE) != nullptr, "no page")) return;
  RecordWriter records = {block->view, 0};
  const uint8_t* data = records.Read(constantOffset, 4);
  Send(block, records, 1, "inside the page");
  Expect(LoadFrom<uint32_t>(data) == constantValue, "wrong data");
  records = {block->view, 0};
  records.Word(1);
  records.Word(0);
  records.Word(2 * pageSize);
  ExpectAnswer(block->atom, 0, "beyond the page");
}

// Mappings of a few bytes, which the system rounds up to a page: an end is found, 1; a record longer than
// the page is not served, 0.
void TinyMapping(ClientBlock* block) {
  for (const uint32_t size : {1u, 4u, 15u}) {
    FreeBlock(block);
    if (!Expect(MakeBlock(size, block), "no tiny block")) return;
    ExpectAnswer(block->atom, 1, "tiny block without records");
    if (size < 4) continue;
    const uint32_t words[3] = {1, 0, pageSize};
    std::memcpy(block->view, words, sizeof words);
    ExpectAnswer(block->atom, 0, "tiny block, long record");
  }
}

// Atoms that name nothing: 0.
void BadAtom(ClientBlock*) {
  char name[256];
  for (const WPARAM atom : {WPARAM{0}, WPARAM{1}, WPARAM{0xBFFF}, WPARAM{0xFFFF}, WPARAM{0x7FFFFFFF}}) {
    ExpectAnswer(atom, 0, "bad atom");
  }
  for (WPARAM atom = 0xFFF0; atom > 0xFF00; --atom) {
    if (GlobalGetAtomNameA(static_cast<ATOM>(atom), name, sizeof name) != 0) continue;
    ExpectAnswer(atom, 0, "unused atom");
    return;
  }
}

// An atom whose name is no mapping, is too long for a name, or belongs to an event: 0.
void MissingMapping(ClientBlock*) {
  HANDLE event = CreateEventA(nullptr, TRUE, FALSE, "CRAFTED:EVENT");
  for (const std::string& name : {std::string("CRAFTED:NOWHERE"), std::string(255, 'x'), std::string("a\\b"),
                                  std::string("CRAFTED:EVENT")}) {
    const ATOM atom = GlobalAddAtomA(name.c_str());
    if (!Expect(atom != 0, "no atom")) break;
    ExpectAnswer(atom, 0, "name without a mapping");
    GlobalDeleteAtom(atom);
  }
  CloseHandle(event);
}

// A mapping made without the right to write: 0, as the server cannot map it. Some systems let it: then the
// list of nothing in it gives 1.
void ReadOnlyMapping(ClientBlock* block) {
  FreeBlock(block);
  if (!Expect(MakeBlock(pageSize, block, PAGE_READONLY), "no read-only block")) return;
  const int answer = Call(server, block->atom);
  Expect(answer == 0 || answer == 1, "no answer to a read-only mapping");
}

// The client's own view and handle go while its request is served: the server has a view of its own. The
// answer is 1, or 0 when the mapping was gone before it was opened.
void UnmapDuring(ClientBlock* block) {
  FreeBlock(block);
  for (int round = 0; round < 40; ++round) {
    ClientBlock own;
    if (!Expect(MakeBlock(256 * 1024, &own), "no block")) return;
    FillWithReads(&own);
    std::future<int> call = StartCall(server, own.atom);
    SpinMicroseconds(round * 20);
    UnmapViewOfFile(own.view);
    CloseHandle(own.mapping);
    own.view = nullptr;
    own.mapping = nullptr;
    const int answer = call.get();
    FreeBlock(&own);
    Expect(answer == 0 || answer == 1, "no answer to a request whose view was unmapped");
  }
}

// Processes that end while their request is served. The server goes on.
void DieMidRequest(ClientBlock*) {
  for (int round = 0; round < 12; ++round) {
    const std::string delay = std::to_string(round * 100);
    if (!Expect(RunSelf("die-child " + delay, 30000), "the dying client could not be run")) return;
    if (!ExpectAlive()) return;
  }
}

// Messages that would end, rename or occupy any other window are nothing to the server: the window stays the
// same under its name, and requests are served meanwhile.
void MeddlingMessages(ClientBlock*) {
  CREATESTRUCTA renamed = {};
  renamed.lpszName = "RENAMED";
  // WM_SYSKEYDOWN: Alt+F4.
  const std::tuple<UINT, WPARAM, LPARAM> cases[] = {{WM_CLOSE, 0, 0},
                                                    {WM_SYSCOMMAND, SC_CLOSE, 0},
                                                    {WM_SYSKEYDOWN, VK_F4, 1 << 29},
                                                    {WM_SYSCOMMAND, SC_MOVE, 0},
                                                    {WM_SYSCOMMAND, SC_SIZE, 0},
                                                    {WM_NCLBUTTONDOWN, HTCAPTION, 0},
                                                    {WM_NCLBUTTONDOWN, HTCLOSE, 0},
                                                    {WM_SETTEXT, 0, reinterpret_cast<LPARAM>("RENAMED")},
                                                    {WM_NCCREATE, 0, reinterpret_cast<LPARAM>(&renamed)},
                                                    {WM_DESTROY, 0, 0},
                                                    {WM_NCDESTROY, 0, 0},
                                                    {WM_QUERYENDSESSION, 0, 0},
                                                    {WM_ENABLE, 0, 0},
                                                    {WM_QUIT, 0, 0}};
  for (const auto& [message, wParam, lParam] : cases) {
    const std::string name = "message " + std::to_string(message) + "/" + std::to_string(wParam);
    DWORD_PTR result = 0;
    SendMessageTimeoutA(server.window, message, wParam, lParam, SMTO_NORMAL, 2000, &result);
    PostMessageA(server.window, message, wParam, lParam);  // refused when it holds a pointer
    for (int round = 0; round < 3; ++round) {  // the queue is looked at between two requests at the latest
      if (!Expect(ExpectAlive(), name)) return;
      Sleep(10);
    }
    Expect(FindWindowA("KORLMAIN", "KORLMAIN") == server.window, name + ": another window or none");
  }
  for (const DWORD thread : ThreadsOfWindowsProcess(server.window)) PostThreadMessageA(thread, WM_QUIT, 0, 0);
  for (int round = 0; round < 3 && ExpectAlive(); ++round) Sleep(10);
  Expect(FindWindowA("KORLMAIN", "KORLMAIN") == server.window, "quit to the threads: another window or none");
}

struct Mode {
  const char* name;
  void (*run)(ClientBlock* block);
};
constexpr Mode modes[] = {
    {"unknown-record", UnknownRecord},     {"readonly-write", ReadOnlyWrite},     {"huge-mapping", HugeMapping},
    {"reserved-mapping", ReservedMapping}, {"tiny-mapping", TinyMapping},         {"bad-atom", BadAtom},
    {"missing-mapping", MissingMapping},   {"readonly-mapping", ReadOnlyMapping}, {"unmap-during", UnmapDuring},
    {"die-mid-request", DieMidRequest},    {"meddling", MeddlingMessages},
};

int RunMode(const Mode& mode) {
  why.clear();
  ClientBlock block;
  if (ExpectAlive() && Expect(MakeBlock(pageSize, &block), "no block")) mode.run(&block);
  FreeBlock(&block);
  ExpectAlive();
  std::printf("%s: %s\n", mode.name, why.empty() ? "ok" : ("FAILED: " + why).c_str());
  return why.empty() ? 0 : 1;
}

int Usage() {
  std::printf("usage: rude_client_win32 MODE\n  all, or one of:");
  for (const Mode& mode : modes) std::printf(" %s", mode.name);
  std::printf(
      "\n  garbage SEED REQUESTS           random blocks; the answer follows from the block\n"
      "  hammer SECONDS RECORDS SLOT     a busy client with its own bytes at slot 0..62, read back each time\n"
      "  change-while-served SECONDS     another thread changes a record's size meanwhile\n"
      "  flood-posted SECONDS SENDERS    messages into the window's queue, from so many threads\n"
      "  flood-threads SECONDS SENDERS   messages into the queues of the simulator's threads\n"
      "  flood-sent SECONDS SENDERS      messages handed over to the window like requests\n"
      "  long-request MEGABYTES          one request with a block of this size\n");
  return 2;
}

}  // namespace

int main(int count, char** words) {
  if (count < 2) return Usage();
  const std::string name = words[1];
  if (!FindServer(&server)) {
    std::printf("%s: no window KORLMAIN\n", name.c_str());
    return 2;
  }
  const auto argument = [=](int index, uint32_t fallback) {
    return count > index ? static_cast<uint32_t>(std::strtoul(words[index], nullptr, 0)) : fallback;
  };
  if (name == "die-child") return DieDuringRequest(server, argument(2, 0));
  // The server may have been stopped by a flood meanwhile: no plain request follows.
  const std::pair<const char*, FloodWay> floods[] = {{"flood-posted", FloodWay::Posted},
                                                     {"flood-threads", FloodWay::PostedToThreads},
                                                     {"flood-sent", FloodWay::Sent}};
  for (const auto& [flood, way] : floods) {
    if (name == flood) return RunFlood(server, way, argument(2, 5), argument(3, 4));
  }
  if (name == "long-request") return RunLongRequest(server, argument(2, 64));
  int load = -1;
  if (name == "garbage") load = RunGarbage(server, argument(2, 1), argument(3, 1000));
  if (name == "hammer") load = RunHammer(server, argument(2, 5), argument(3, 50), argument(4, 0));
  if (name == "change-while-served") load = RunChangeWhileServed(server, argument(2, 2));
  if (load >= 0) {
    if (ExpectAlive()) return load;
    std::printf("%s: FAILED: %s\n", name.c_str(), why.c_str());
    return 1;
  }
  int failed = 0;
  bool found = false;
  for (const Mode& mode : modes) {
    if (name != "all" && name != mode.name) continue;
    found = true;
    failed |= RunMode(mode);
  }
  return found ? failed : Usage();
}
