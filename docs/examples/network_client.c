/* Reads a 16-bit offset of a TAVRIX server, or writes it and waits until the server shows the value.
       cc -o network_client network_client.c       network_client 192.168.0.1 0x07CC 16384
   For a little-endian computer; on Windows include winsock2.h instead and call WSAStartup first. */
#include <arpa/inet.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <time.h>
#pragma pack(push, 1)
struct { uint8_t type, zero; uint16_t length, auxiliary; uint32_t kind, offset, size; uint16_t value;
         uint32_t end; uint16_t lengthCopy, marker; } request = {18, 0, 18, 0, 2, 0, 2, 0, 0, 18, 0xAFFE};
#pragma pack(pop)
static uint8_t memory[0x20000], frame[65536];

int main(int count, char** words) {
  if (count < 3) return 2;
  uint32_t offset = strtoul(words[2], NULL, 0) & 0x1FFFE, blocks = 0, sent = 0;
  request.offset = offset, request.value = count > 3 ? strtoul(words[3], NULL, 0) : 0;
  struct sockaddr_in local = {.sin_family = AF_INET};
  struct sockaddr_in server = {AF_INET, htons(65000), {inet_addr(words[1])}, {0}};
  socklen_t size = sizeof local;
  int udp = socket(AF_INET, SOCK_DGRAM, 0), tcp = socket(AF_INET, SOCK_STREAM, 0);
  struct timeval patience = {1, 0};
  time_t deadline = time(NULL) + 6;
  setsockopt(udp, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  bind(tcp, (struct sockaddr*)&local, sizeof local);
  getsockname(tcp, (struct sockaddr*)&local, &size);  /* datagrams come to the connection's own port */
  if (bind(udp, (struct sockaddr*)&local, sizeof local) != 0) return perror("bind"), 1;
  if (connect(tcp, (struct sockaddr*)&server, sizeof server) != 0) return perror("connect"), 1;
  while (blocks != 0xFF || (sent && memcmp(memory + offset, &request.value, 2) != 0)) {
    long got = recv(udp, frame, sizeof frame, 0);
    if (time(NULL) > deadline) return fprintf(stderr, "the server does not show it\n"), 1;
    if (got < 0) continue;
    if (frame[0] >= 6 && frame[0] <= 13 && got == 16394) {  /* a block of 16,384 bytes */
      memcpy(memory + (frame[0] - 6) * 16384, frame + 6, 16384);
      blocks |= 1u << (frame[0] - 6);
    } else if (frame[0] == 103) {  /* changed bytes: bank, 0, offset, value, 0 */
      for (uint8_t* at = frame + 6; at + 6 <= frame + got - 4; at += 6)
        memory[(at[0] & 1) << 16 | at[3] << 8 | at[2]] = at[4];
    }
    if (blocks == 0xFF && count > 3 && !sent) sent = send(tcp, &request, sizeof request, 0) == sizeof request;
  }
  printf("%d\n", memory[offset] | memory[offset + 1] << 8);
  return 0;
}
