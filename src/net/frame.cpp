#include "net/frame.h"

#include "base/bytes.h"

namespace {

bool IsClientFrame(uint8_t type) { return type == frameRequestList || type == frameSubscription; }

}  // namespace

bool ParseFrame(uint8_t* buffer, size_t size, size_t at, ReceivedFrame* frame) {
  if (at > size || size - at < frameOverhead) return false;
  uint8_t* start = buffer + at;
  *frame = {start[0], LoadFrom<uint16_t>(start + 2), LoadFrom<uint16_t>(start + 4), start + frameHeaderSize};
  if (!IsClientFrame(frame->type)) return false;
  if (frame->length > size - at - frameOverhead) return false;
  const uint16_t endMarker = frame->type == frameRequestList ? endRequestList : endSubscription;
  return LoadFrom<uint16_t>(frame->payload + frame->length) == frame->length &&
         LoadFrom<uint16_t>(frame->payload + frame->length + 2) == endMarker;
}

size_t ServableSize(const uint8_t* buffer, size_t size, size_t capacity) {
  constexpr size_t lengthEnd = 4;
  size_t at = 0;
  while (at < size) {
    if (!IsClientFrame(buffer[at])) return size;
    if (size - at < lengthEnd) return at;
    const size_t whole = LoadFrom<uint16_t>(buffer + at + 2) + frameOverhead;
    if (whole > capacity) return size;
    if (whole > size - at) return at;
    at += whole;
  }
  return at;
}

size_t FinishFrame(uint8_t* frame, uint8_t type, size_t payloadSize, uint16_t endMarker) {
  const auto length = static_cast<uint16_t>(payloadSize);
  frame[0] = type;
  frame[1] = 0;
  StoreTo(frame + 2, length);
  StoreTo<uint16_t>(frame + 4, 0);
  uint8_t* end = frame + frameHeaderSize + payloadSize;
  StoreTo(end, length);
  StoreTo(end + 2, endMarker);
  return payloadSize + frameOverhead;
}
