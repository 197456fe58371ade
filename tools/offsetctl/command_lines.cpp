#include "command_lines.h"

#include <string>

namespace ctl {

namespace {

constexpr size_t anyNumber = 1000000;

constexpr CommandLine commandLines[] = {
    {.word = "read",
     .command = Command::Read,
     .options = takesServer | takesJson,
     .fewest = 1,
     .most = anyNumber,
     .usage = "read ITEM... [--json]",
     .about =
         "Reads all items in one request and prints a line each:\n"
         "  0x0330 = 16211 (53 3F)                    value, bytes in memory order\n"
         "  ias = 140.5 kt, 17984 (40 46 00 00)       value in units, stored value, bytes\n"
         "Values that need no conversion are printed once.\n"
         "--json prints one array of {name, offset, type, value, raw, unit} instead; integers of 64 bits are\n"
         "strings there.\n"},
    {.word = "write",
     .command = Command::Write,
     .options = takesServer | takesConfirm,
     .fewest = 1,
     .most = anyNumber,
     .usage = "write ITEM=VALUE... [--confirm]",
     .about =
         "Writes all values in one request, in the order given, and prints the old and the new ones.\n"
         "VALUE is decimal or 0x, a fraction for f32 and f64, hex:BYTES in memory order, or text with or\n"
         "without double quotes (inside them \\\" \\\\ \\n \\xHH). A name without a type takes its own unit "
         "or\n"
         "one that converts to it (heading=270, altitude=5000ft, com1=118.705MHz), and words: on, off, and "
         "those\n"
         "that `list` shows beside a number (gear=up). It is rounded to the nearest step, which is said when "
         "it\n"
         "shows. With a type the value is stored as it is (com1:u16=0x1870). Read-only offsets and values\n"
         "that do not fit are refused, nothing is written then.\n"
         "Over the network, where nothing is answered, the end without an error says that the server has taken "
         "the\n"
         "values; --confirm waits until it shows them, or what the simulator made of them.\n"},
    {.word = "watch",
     .command = Command::Watch,
     .options = takesServer | takesJson | takesRate | takesSeconds | takesCount,
     .fewest = 1,
     .most = anyNumber,
     .usage = "watch ITEM... [--rate N] [--count N] [--seconds N] [--json]",
     .about =
         "Prints every item once and then whenever its bytes change, until Ctrl-C, N printed values (--count) "
         "or\n"
         "N seconds. --rate samples a second, 10 by default, at most 1000. --json prints an object a line.\n"},
    {.word = "dump",
     .command = Command::Dump,
     .options = takesServer,
     .fewest = 1,
     .most = 1,
     .usage = "dump FILE",
     .about = "Writes the 131,072 bytes of the offset memory, as they are at one moment, into FILE.\n"},
    {.word = "monitor",
     .command = Command::Monitor,
     .options = takesServer | takesRate | takesSeconds | takesNote,
     .fewest = 0,
     .most = 0,
     .usage = "monitor [--seconds N] [--rate N] [--note TEXT]",
     .about =
         "A live table of the cockpit in a pilot's units (feet, knots, feet a minute; nose up and right wing\n"
         "down are positive), until q, Ctrl-C or N seconds. Into a file or pipe it prints one table a "
         "second. TEXT stands below its head.\n"},
    {.word = "list",
     .command = Command::List,
     .options = takesJson,
     .fewest = 0,
     .most = anyNumber,
     .usage = "list [WORD...] [--json]",
     .about =
         "Named offsets with every WORD in their name, meaning, unit or subject, or that start at the offset "
         "WORD;\n"
         "all of them without a WORD. Needs no server.\n"},
    {.word = "map",
     .command = Command::Map,
     .options = takesServer | takesFolder,
     .fewest = 2,
     .most = 3,
     .usage = "map DATAREF KIND [OFFSET] [--folder DIR]",
     .about =
         "Gives any dataref of the simulator an offset of its own: adds it to TAVRIXOffsets.cfg beside the\n"
         "running plug-in, has the plug-in read that file again and prints the value. Clients can read and\n"
         "write it from then on.\n"
         "KIND is how the simulator keeps the dataref: int float double floatarray intarray data. OFFSET is\n"
         "hexadecimal, up to FFFF; without it the next free place from 66C0 on is taken. The plug-in's folder\n"
         "is asked of the server; --folder names it (or X-Plane's) when the server runs on another "
         "computer.\n"},
    {.word = "check",
     .command = Command::Check,
     .options = takesLog,
     .fewest = 1,
     .most = 1,
     .usage = "check FILE [--log TAVRIX.txt]",
     .about =
         "Tells every line of an offsets file that does not do what it seems to, with line, column and what\n"
         "would be right. With --log also the datarefs and commands that the running simulator did not find.\n"
         "Exit status 1 when there is something. Needs no server.\n"},
    {.word = "doctor",
     .command = Command::Doctor,
     .options = 0,
     .fewest = 0,
     .most = 1,
     .usage = "doctor [FOLDER]",
     .about =
         "Looks at an installation on this computer: the folder's layout, TAVRIX.ini, TAVRIXOffsets.cfg,\n"
         "address and ports and who holds them, the firewall's rules, what the log says; each finding with\n"
         "what to do. FOLDER is X-Plane's or the plug-in's; without it the current one and the running\n"
         "plug-in's are tried. Exit status 1 when something is wrong. Changes nothing.\n"},
    {.word = "record",
     .command = Command::Record,
     .options = takesServer | takesSeconds,
     .fewest = 1,
     .most = 1,
     .usage = "record FILE [--seconds N]",
     .about = "Writes what the network server sends, each frame with its time, into FILE, until Ctrl-C or N\n"
              "seconds. docs/recordings.md describes the file.\n"},
    {.word = "replay",
     .command = Command::Replay,
     .options = takesSpeed | takesListen | takesLoop | takesSeconds,
     .fewest = 1,
     .most = 1,
     .usage = "replay FILE [--speed X] [--listen ADDRESS] [--loop] [--seconds N]",
     .about =
         "A network server without a simulator that shows what was recorded, X times as fast (1). It serves\n"
         "up to eight clients at ADDRESS (127.0.0.1) as the plug-in does. What a client writes is echoed and\n"
         "stays until the recording changes it. At its end the last values stay; with --loop it begins again.\n"
         "Ends with Ctrl-C or after N seconds.\n"},
    {.word = "conform",
     .command = Command::Conform,
     .options = takesListen,
     .fewest = 0,
     .most = anyNumber,
     .usage = "conform [SITUATION...] [--listen ADDRESS] -- COMMAND...",
     .about =
         "Starts COMMAND, a client program, once for each SITUATION (all of them by default) against a server\n"
         "that makes trouble, and tells how the client took it. docs/conformance.md says what COMMAND is told\n"
         "and must print. Exit status 1 when the client fails in one.\n"},
    {.word = "serve",
     .command = Command::Serve,
     .options = takesWay | takesWeb | takesListen,
     .fewest = 0,
     .most = 1,
     .usage = "serve [--port N] [--listen ADDRESS --token TEXT] [--panels DIR] [--recordings DIR] [RECORDING]",
     .about = "The web cockpit: serves a page and an interface for browsers and scripts, until Ctrl-C, and "
              "prints its\n"
              "address. --port N is 8440 by default, 0 any free one. Only this computer reaches it; other ones "
              "need\n"
              "--listen with an address of this computer (0.0.0.0: all of them) and --token, 8 to 128 of the\n"
              "characters A-Z a-z 0-9 . _ ~ -, which they have to give. It takes --local, --net HOST and "
              "--find, starts\n"
              "without a simulator and connects by itself. RECORDING is shown in place of a simulator.\n"
              "--panels is a folder of your own HTML files, --recordings the one of recordings; without them "
              "they are\n"
              "the folders panels and recordings beside the program.\n"},
    {.word = "--find",
     .command = Command::Find,
     .options = takesJson | takesTimeout,
     .fewest = 0,
     .most = 0,
     .usage = "--find [--json]",
     .about =
         "Listens for servers on the network and prints their addresses, a line each. It ends 2.5 seconds "
         "after "
         "the\n"
         "last new one, or after --timeout SECONDS (5) without any. A server on this computer is not heard.\n"},
    {.word = "help",
     .command = Command::Help,
     .options = 0,
     .fewest = 0,
     .most = 1,
     .usage = "help [COMMAND]",
     .about = "What offsetctl can do, or all about one command.\n"},
    {.word = "version",
     .command = Command::Version,
     .options = 0,
     .fewest = 0,
     .most = 0,
     .usage = "version",
     .about = "The version of the plug-in that this offsetctl belongs to.\n"},
};

}  // namespace

std::span<const CommandLine> CommandLines() { return commandLines; }

const CommandLine* LineOf(Command command) {
  for (const CommandLine& line : commandLines) {
    if (line.command == command) return &line;
  }
  return nullptr;
}

std::string HelpText(Command command) {
  std::string text;
  if (const CommandLine* line = LineOf(command)) {
    text = std::string("offsetctl ") + line->usage + "\n\n" + line->about;
    if (line->options & takesServer) {
      text +=
          "\nEvery command that talks to the server takes --timeout SECONDS (5), --local, --net HOST and "
          "--find.\n";
    }
    return text;
  }
  text = "offsetctl reads and writes the offsets of a running TAVRIX plug-in.\n\n";
  for (const CommandLine& line : commandLines) text += std::string("  offsetctl ") + line.usage + "\n";
  text +=
      "\nITEM is OFFSET:TYPE, NAME or NAME:TYPE. OFFSET is decimal or 0x, 0 to 0x1FFFF.\n"
      "TYPE is u8 s8 u16 s16 u32 s32 u64 s64 f32 f64 hex:N or text:N (N bytes).\n"
      "A NAME without a type speaks in engineering units (deg, kt, ft, MHz), with a type it is the stored\n"
      "number. So does an OFFSET without a type, when the plug-in has a meaning for it.\n"
      "\nOptions stand anywhere:\n"
      "  --timeout SECONDS   longest wait for an answer, 5 by default\n"
      "  --local             ask the window server on this computer (Windows; the default there)\n"
      "  --net HOST          ask the network server at this address or name (elsewhere the default: "
      "127.0.0.1)\n"
      "  COMMAND --find      ask the first network server that announces itself\n"
      "  COMMAND --help      more about one command\n"
      "\nExit status: 0 done; 1 no server, refused or no answer in time; 2 wrong usage, name, type or value.\n"
      "\n  offsetctl read heading ias 0x0330:u16\n"
      "  offsetctl write com1=118.70 altitude=5000ft gear=up\n"
      "  offsetctl watch altitude --rate 2 --seconds 60\n";
  return text;
}

}  // namespace ctl
