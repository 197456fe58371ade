// What every crafted client of the window server needs: the server's window, a shared block under a name of
// its own, and one request. Windows only; each client is a program of its own.
#pragma once
#include <windows.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "base/bytes.h"

struct Server {
  HWND window;
  UINT message;
};

// Waits up to 10 seconds for the server's window. Returns true, or false without it.
inline bool FindServer(Server* server) {
  server->message = RegisterWindowMessageA("KELDOMAR:IPC");
  for (int attempt = 0; attempt < 200; ++attempt) {
    server->window = FindWindowA("KORLMAIN", "KORLMAIN");
    if (server->window != nullptr) return true;
    Sleep(50);
  }
  return false;
}

struct ClientBlock {
  HANDLE mapping;
  uint8_t* view;
  uint32_t size;
  ATOM atom;
  std::string name;
};

// A block of `size` bytes. `protection` may add SEC_RESERVE or be read-only. Returns true, or
// false when the system refuses.
inline bool MakeBlock(uint32_t size, ClientBlock* block, DWORD protection = PAGE_READWRITE) {
  static LONG counter;
  *block = {};
  block->size = size;
  block->name =
      "CRAFTED:" + std::to_string(GetCurrentProcessId()) + ":" + std::to_string(InterlockedIncrement(&counter));
  block->mapping = CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, protection, 0, size, block->name.c_str());
  if (block->mapping == nullptr) return false;
  const bool readable = (protection & PAGE_READONLY) != 0;
  block->view =
      static_cast<uint8_t*>(MapViewOfFile(block->mapping, readable ? FILE_MAP_READ : FILE_MAP_WRITE, 0, 0, 0));
  block->atom = GlobalAddAtomA(block->name.c_str());
  return block->view != nullptr && block->atom != 0;
}

inline void FreeBlock(ClientBlock* block) {
  if (block->atom != 0) GlobalDeleteAtom(block->atom);
  if (block->view != nullptr) UnmapViewOfFile(block->view);
  if (block->mapping != nullptr) CloseHandle(block->mapping);
  *block = {};
}

constexpr int noAnswer = -1;

// Sends the request and returns the server's answer, or noAnswer after `timeoutMs`.
inline int Call(const Server& server, WPARAM atom, UINT timeoutMs = 20000) {
  DWORD_PTR result = 0;
  if (SendMessageTimeoutA(server.window, server.message, atom, 0, SMTO_NORMAL, timeoutMs, &result) == 0) {
    return noAnswer;
  }
  return static_cast<int>(result);
}

// Puts records into a block one after the other.
struct RecordWriter {
  uint8_t* base;
  size_t at;

  void Word(uint32_t word) {
    StoreTo(base + at, word);
    at += 4;
  }
  // Returns where the server puts the bytes.
  uint8_t* Read(uint32_t offset, uint32_t size) {
    Word(1);
    Word(offset);
    Word(size);
    Word(0xC11E0001);  // our own word, which the server leaves alone
    uint8_t* data = base + at;
    at += size;
    return data;
  }
  void Write(uint32_t offset, uint32_t size, const void* bytes) {
    Word(2);
    Word(offset);
    Word(size);
    if (size != 0) std::memcpy(base + at, bytes, size);
    at += size;
  }
  void End() { Word(0); }
};
