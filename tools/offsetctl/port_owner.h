// Who listens on a port of this computer. Main thread.
#pragma once
#include <cstdint>
#include <string>

namespace ctl {

enum class PortKind { Tcp, Udp };

// "X-Plane (process 1234)", "process 1234" when its name is hidden from us, "" when nobody has the port or the
// system does not tell.
std::string OwnerOfPort(PortKind kind, uint16_t port);

}  // namespace ctl
