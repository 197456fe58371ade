// offsetctl doctor: looks at an installation on this computer and tells what it finds.
#include <cstdio>

#include "check.h"
#include "commands.h"
#include "console.h"
#include "doctor.h"
#include "net_client.h"
#include "port_owner.h"
#include "sockets.h"

namespace ctl {

namespace {

constexpr int patienceMs = 1500;
constexpr uint16_t requestPort = 65000, burstPort = 65100;
constexpr uint32_t folderOffset = 0x3E00, folderSize = 0x100;

size_t Tell(const std::vector<Diagnosis>& told) {
  size_t bad = 0;
  for (const Diagnosis& one : told) {
    const char* word = one.health == Health::Good ? "ok" : one.health == Health::Note ? "note" : "PROBLEM";
    std::printf("%-8s %s\n", word, one.text.c_str());
    if (!one.remedy.empty()) std::printf("         %s\n", one.remedy.c_str());
    bad += one.health == Health::Bad;
  }
  std::fflush(stdout);
  return bad;
}

// As a running plug-in tells it; "" when none answers.
std::string FolderOfServer() {
  const Transport* transport =
      LocalTransport() != nullptr ? LocalTransport() : NetTransport({"127.0.0.1", StopRequested, false});
  std::vector<uint8_t> bytes(folderSize + 1);
  std::string unused;
  if (!transport->open(patienceMs, &unused)) return "";
  if (!transport->readOffsets({{folderOffset, folderSize, bytes.data()}}, &unused)) bytes[0] = 0;
  transport->close();
  return reinterpret_cast<const char*>(bytes.data());
}

std::string FindInstallation(const Options& options) {
  if (!options.items.empty()) return PluginFolderIn(options.items[0]);
  const std::string here = PluginFolderIn(".");
  return here.empty() ? PluginFolderIn(FolderOfServer()) : here;
}

std::vector<Diagnosis> LookAtBinaries(const std::string& folder) {
  std::vector<PlacedBinary> binaries = BinaryPlaces();
  for (PlacedBinary& binary : binaries) binary.found = KindOfBinary(Joined(folder, binary.path));
  std::vector<Diagnosis> told = DiagnoseLayout(binaries);
  if (IsFolder(Joined(folder, "TAVRIX"))) {
    told.push_back({Health::Bad, "There is a folder TAVRIX within the folder TAVRIX.",
                    "X-Plane looks one level deep: move what is in the inner folder to the outer one."});
  }
  return told;
}

// Program files of the plug-in in the other folders beside its own, where X-Plane loads them, too.
std::vector<std::string> FindCopies(const std::string& folder) {
  constexpr const char* programs[] = {"win.xpl", "lin.xpl", "32/win.xpl", "64/win.xpl", "64/lin.xpl"};
  std::vector<std::string> copies;
  const std::string plain = folder.substr(0, folder.find_last_not_of("/\\") + 1);
  const size_t separator = plain.find_last_of("/\\");
  if (separator == std::string::npos) return copies;
  const std::string above = plain.substr(0, separator), own = plain.substr(separator + 1);
  for (const std::string& name : NamesIn(above)) {
    if (name == own) continue;
    const std::string path = Joined(above, name);
    if (name.ends_with(".xpl") && IsThisPlugin(path)) copies.push_back(path);
    for (const char* program : programs) {
      if (IsThisPlugin(Joined(path, program))) copies.push_back(Joined(path, program));
    }
  }
  return copies;
}

std::vector<Diagnosis> LookAtOffsetsFile(const std::string& folder, const std::string& log) {
  const std::string path = Joined(folder, "TAVRIXOffsets.cfg");
  if (!IsFile(path)) return {{Health::Good, "There is no TAVRIXOffsets.cfg: no offsets of your own.", ""}};
  std::string text;
  if (!ReadTextFile(path, &text)) {
    return {{Health::Bad, "TAVRIXOffsets.cfg cannot be read.", "Make it a text file that your user may read."}};
  }
  size_t problems = 0;
  for (const Finding& finding : CheckOffsetsFile(text, log, KnownOffsets())) problems += !finding.note;
  if (problems == 0) return {{Health::Good, "TAVRIXOffsets.cfg is in order.", ""}};
  return {{Health::Bad, "TAVRIXOffsets.cfg has " + std::to_string(problems) + " problem(s).",
           "offsetctl check " + path + " --log " + Joined(folder, "TAVRIX.txt") + " tells each of them."}};
}

// Whether it sends the offset memory, as no other program does.
bool IsServer(const std::string& address) {
  const Transport* transport = NetTransport({address, StopRequested, false});
  std::string unused;
  const bool answers = transport->open(patienceMs, &unused) && transport->readOffsets({}, &unused);
  transport->close();
  return answers;
}

// Whether the server can be reached at the address that the settings name, and who has its ports.
std::vector<Diagnosis> LookAtPorts(const NetworkSettings& settings) {
  if (settings.ip == 0) return {};
  const std::string place = "TCP port 65000 of " + settings.address;
  const std::string owner = OwnerOfPort(PortKind::Tcp, requestPort);
  const std::string by = owner.empty() ? "" : " It is held by " + owner + ".";
  SocketHandle stream = noSocket;
  std::string reason;
  const Connecting result = ConnectStream(0, {settings.ip, requestPort}, patienceMs, &stream, &reason);
  CloseSocket(stream);
  std::vector<Diagnosis> told;
  const bool serves = result == Connecting::Done && IsServer(settings.address);
  if (result == Connecting::Done && !serves) {
    told.push_back(
        {Health::Bad, "Something accepts connections at " + place + ", but no values come from it." + by,
         "If that is not X-Plane, close it and reload the plug-in; if it is, a firewall keeps UDP away or "
         "the simulator stands still."});
  } else if (result == Connecting::Done) {
    told.push_back({Health::Good, "A server answers at " + place + "." + by, ""});
  } else if (!owner.empty()) {
    told.push_back({Health::Bad, "Nobody answers at " + place + ", but the port is taken." + by,
                    "Close that program, or wait until a client leaves if it is X-Plane: eight are served."});
  } else {
    told.push_back({Health::Note,
                    "Nobody answers at " + place + ": X-Plane does not run, or not with the plug-in.",
                    "Start X-Plane and run this again; what follows tells of its last start."});
  }
  const std::string sender = OwnerOfPort(PortKind::Udp, burstPort);
  // Where values come from the port it is the plug-in's, even if the system does not tell who has the other
  // one.
  if (!serves && !sender.empty() && sender != owner) {
    told.push_back({Health::Bad, "UDP port 65100 is held by " + sender + ": clients get no values.",
                    "Close that program and reload the plug-in."});
  }
  return told;
}

}  // namespace

int RunDoctor(const Options& options) {
  WatchForStop();
  const std::string folder = FindInstallation(options);
  if (folder.empty()) {
    const std::string where = options.items.empty() ? "here, and no plug-in runs that would tell where it lies"
                                                    : "in " + options.items[0];
    return Report(exitUsage, "there is no folder Resources/plugins/TAVRIX " + where +
                                 ": offsetctl doctor FOLDER, with X-Plane's folder");
  }
  std::printf("Looking at %s\n", folder.c_str());
  std::string ini, log, error;
  ReadTextFile(Joined(folder, "TAVRIX.txt"), &log);
  size_t bad = Tell(LookAtBinaries(folder)) + Tell(DiagnoseCopies(FindCopies(folder)));
  if (ReadTextFile(Joined(folder, "TAVRIX.ini"), &ini)) {
    const NetworkSettings settings = ReadNetworkSettings(ini);
    if (!StartSockets(&error)) return Report(exitNoAnswer, error);
    bad += Tell(DiagnoseSettings(settings, OwnAddresses()));
    bad += Tell(LookAtPorts(settings));
    StopSockets();
    bad += Tell(DiagnoseFirewall(settings));
  } else {
    bad += Tell({{Health::Note, "There is no TAVRIX.ini yet: the plug-in makes it at its first start.", ""}});
  }
  bad += Tell(LookAtOffsetsFile(folder, log));
  bad += Tell(DiagnoseLog(log));
  std::printf("%zu problem(s)\n", bad);
  return bad == 0 ? exitDone : exitNoAnswer;
}

}  // namespace ctl
