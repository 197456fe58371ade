/* Reads a 16-bit offset of TAVRIX on this computer, or writes it and reads it back in the same request.
       i686-w64-mingw32-gcc -o local_client local_client.c       local_client 0x07CC 16384 */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <windows.h>
#pragma pack(push, 1)
struct Write { uint32_t type, offset, size; uint16_t data; };
struct Read { uint32_t type, offset, size, own; uint16_t data; };
#pragma pack(pop)

int main(int count, char** words) {
  if (count < 2) return 2;
  uint32_t offset = strtoul(words[1], NULL, 0);
  char name[64];
  sprintf(name, "LOCALCLIENT:%lu:1", GetCurrentProcessId());  /* a name of its own for every block */
  HWND server = FindWindowA("KORLMAIN", "KORLMAIN");
  UINT message = RegisterWindowMessageA("KELDOMAR:IPC");
  HANDLE mapping = CreateFileMappingA(INVALID_HANDLE_VALUE, NULL, PAGE_READWRITE, 0, 4096, name);
  uint8_t* block = mapping ? MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 0) : NULL;
  ATOM atom = GlobalAddAtomA(name);
  if (!server || !block || !atom) return fprintf(stderr, "no server or no memory\n"), 1;

  uint8_t* at = block;
  if (count > 2) {
    struct Write write = {2, offset, 2, (uint16_t)strtoul(words[2], NULL, 0)};
    memcpy(at, &write, sizeof write);
    at += sizeof write;
  }
  struct Read read = {1, offset, 2, 0, 0};
  memcpy(at, &read, sizeof read);
  memset(at + sizeof read, 0, 4);  /* the end of the list */
  DWORD_PTR served = 0;
  /* After a time-out the server may still use the block: make a new one then. */
  int answered = SendMessageTimeoutA(server, message, atom, 0, SMTO_BLOCK, 5000, &served) != 0;
  memcpy(&read, at, sizeof read);
  GlobalDeleteAtom(atom);
  if (!answered || served != 1) return fprintf(stderr, "no answer or refused\n"), 1;
  printf("%u\n", read.data);
  return 0;
}
