#include "options.h"

#include "numbers.h"

namespace ctl {

namespace {

// Options of the commands, as bits.
enum : unsigned { json = 1, rate = 2, seconds = 4, count = 8, server = 16, confirm = 32, timeout = 64 };

struct CommandLine {
  const char* word;
  Command command;
  unsigned options;
  size_t fewest, most;  // items
  const char* usage;
  const char* about;
};

constexpr size_t anyNumber = 1000000;

constexpr CommandLine commandLines[] = {
    {.word = "read",
     .command = Command::Read,
     .options = server | json,
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
     .options = server | confirm,
     .fewest = 1,
     .most = anyNumber,
     .usage = "write ITEM=VALUE... [--confirm]",
     .about =
         "Writes all values in one request, in the order given.\n"
         "VALUE is decimal or 0x, a fraction for f32 and f64, hex:BYTES in memory order, or text with or "
         "without\n"
         "double quotes (inside them \\\" \\\\ \\n \\xHH). A name without a type takes engineering units and "
         "rounds\n"
         "to the nearest step (heading=270, com1=118.70, pause=on); with a type the value is stored as\n"
         "it is (com1:u16=0x1870). Read-only offsets and values that do not fit are refused, nothing is\n"
         "written then.\n"
         "Over the network, where nothing is answered, the end without an error says that the server has taken "
         "the\n"
         "values; --confirm waits until it shows them.\n"},
    {.word = "watch",
     .command = Command::Watch,
     .options = server | json | rate | seconds | count,
     .fewest = 1,
     .most = anyNumber,
     .usage = "watch ITEM... [--rate N] [--count N] [--seconds N] [--json]",
     .about =
         "Prints every item once and then whenever its bytes change, until Ctrl-C, N printed values (--count) "
         "or\n"
         "N seconds. --rate samples a second, 10 by default, at most 1000. --json prints an object a line.\n"},
    {.word = "dump",
     .command = Command::Dump,
     .options = server,
     .fewest = 1,
     .most = 1,
     .usage = "dump FILE",
     .about = "Writes the 131,072 bytes of the offset memory, as they are at one moment, into FILE.\n"},
    {.word = "monitor",
     .command = Command::Monitor,
     .options = server | rate | seconds,
     .fewest = 0,
     .most = 0,
     .usage = "monitor [--seconds N] [--rate N]",
     .about =
         "A live table of the cockpit, until Ctrl-C or N seconds. Into a file or pipe it prints one table a "
         "second.\n"},
    {.word = "list",
     .command = Command::List,
     .options = json,
     .fewest = 0,
     .most = anyNumber,
     .usage = "list [WORD...] [--json]",
     .about =
         "Named offsets with every WORD in their name, meaning, unit or subject, or that start at the offset "
         "WORD;\n"
         "all of them without a WORD. Needs no server.\n"},
    {.word = "--find",
     .command = Command::Find,
     .options = json | timeout,
     .fewest = 0,
     .most = 0,
     .usage = "--find [--json]",
     .about =
         "Listens for servers on the network and prints their addresses, a line each. It ends 2.5 seconds "
         "after "
         "the\n"
         "last new one, or after --timeout SECONDS (5) without any. A server on this computer is not heard.\n"},
};

const CommandLine* LineOf(Command command) {
  for (const CommandLine& line : commandLines) {
    if (line.command == command) return &line;
  }
  return nullptr;
}

bool Fail(std::string* error, const std::string& text) {
  *error = text;
  return false;
}

// Options with a number behind them.
struct NumberOption {
  const char* name;
  unsigned commands;  // bits of which one is enough
  double least, most;
  double Options::*target;
};
constexpr NumberOption numberOptions[] = {
    {.name = "--timeout",
     .commands = server | timeout,
     .least = 0.01,
     .most = 3600,
     .target = &Options::timeout},
    {.name = "--rate", .commands = rate, .least = 0.01, .most = 1000, .target = &Options::rate},
    {.name = "--seconds", .commands = seconds, .least = 0.01, .most = 1e6, .target = &Options::seconds},
};

bool TakeNumber(const NumberOption& option, const std::string& text, Options* options, std::string* error) {
  double parsed = 0;
  if (ParseReal(text, &parsed) && parsed >= option.least && parsed <= option.most) {
    options->*option.target = parsed;
    return true;
  }
  return Fail(error, std::string(option.name) + " takes a number from " + RealText(option.least) + " to " +
                         RealText(option.most) + ", not \"" + text + "\"");
}

enum class Taken { Yes, No, Unknown };

// An option with a value. No: with a sentence in `error`. Unknown: it is none of these, or not one of this
// command.
Taken TakeValueOption(const std::string& option, unsigned allowed, const std::string& value, Options* options,
                      std::string* error) {
  const auto result = [](bool taken) { return taken ? Taken::Yes : Taken::No; };
  if (option == "--net" && (allowed & server)) {
    options->net = value;
    const bool named = !value.empty() && value[0] != '-';
    return result(named || Fail(error, "--net takes a computer's name or address"));
  }
  if (option == "--count" && (allowed & count)) {
    const bool counted = ParseUnsigned(value, UINT32_MAX, &options->count) && options->count > 0;
    return result(counted || Fail(error, "--count takes a whole number from 1, not \"" + value + "\""));
  }
  for (const NumberOption& known : numberOptions) {
    if (option == known.name && (allowed & known.commands))
      return result(TakeNumber(known, value, options, error));
  }
  return Taken::Unknown;
}

bool CheckWay(const Options& options, std::string* error) {
  if (options.local + options.find + !options.net.empty() <= 1) return true;
  return Fail(error, "--local, --net and --find are three ways to the server: choose one");
}

bool CheckItems(const CommandLine& line, const Options& options, std::string* error) {
  const size_t items = options.items.size();
  if (items >= line.fewest && items <= line.most) return true;
  return Fail(error, std::string(items < line.fewest ? "something is missing" : "too much is given") +
                         ": offsetctl " + line.usage);
}

}  // namespace

bool ParseOptions(const std::vector<std::string>& words, Options* options, std::string* error) {
  *options = {};
  const CommandLine* line = nullptr;
  bool optionsEnded = false;
  for (size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    if (optionsEnded || word.size() < 2 || word[0] != '-') {
      if (line != nullptr) {
        options->items.push_back(word);
        continue;
      }
      for (const CommandLine& known : commandLines) {
        if (word == known.word) line = &known;
      }
      if (line == nullptr) return Fail(error, "no command \"" + word + "\": see offsetctl --help");
      options->command = line->command;
      continue;
    }
    if (line == nullptr && word == "--find") {
      line = LineOf(Command::Find);
      options->command = Command::Find;
      continue;
    }
    if (line == nullptr && word != "--help" && word != "-h") {
      return Fail(error, "the command comes before " + word + ": see offsetctl --help");
    }
    const unsigned allowed = line == nullptr ? 0 : line->options;
    if (word == "--") {
      optionsEnded = true;
    } else if (word == "--help" || word == "-h") {
      options->help = true;
    } else if (word == "--json" && (allowed & json)) {
      options->json = true;
    } else if (word == "--local" && (allowed & server)) {
      options->local = true;
    } else if (word == "--find" && (allowed & server)) {
      options->find = true;
    } else if (word == "--confirm" && (allowed & confirm)) {
      options->confirm = true;
    } else {
      const size_t equals = word.find('=');
      const std::string option = word.substr(0, equals);
      std::string value;
      if (equals != std::string::npos) {
        value = word.substr(equals + 1);
      } else if (i + 1 < words.size()) {
        value = words[i + 1];
      }
      const Taken taken = TakeValueOption(option, allowed, value, options, error);
      if (taken == Taken::No) return false;
      if (taken == Taken::Unknown) {
        return Fail(error, std::string(line->word) + " has no option " + option + ": see offsetctl " +
                               line->word + " --help");
      }
      if (equals == std::string::npos) ++i;
    }
  }
  if (options->help) return true;
  if (line == nullptr) return Fail(error, "a command is missing: see offsetctl --help");
  return CheckWay(*options, error) && CheckItems(*line, *options, error);
}

std::string HelpText(Command command) {
  std::string text;
  if (const CommandLine* line = LineOf(command)) {
    text = std::string("offsetctl ") + line->usage + "\n\n" + line->about;
    if (line->options & server) {
      text +=
          "\nEvery command that talks to the server takes --timeout SECONDS (5), --local, --net HOST and "
          "--find.\n";
    }
    return text;
  }
  text = "offsetctl reads and writes the offsets of a running TAVRIX plug-in.\n\n";
  for (const CommandLine& line : commandLines) text += std::string("  offsetctl ") + line.usage + "\n";
  text += "  offsetctl check FILE [--log TAVRIX.txt]\n";
  text +=
      "\nITEM is OFFSET:TYPE, NAME or NAME:TYPE. OFFSET is decimal or 0x, 0 to 0x1FFFF.\n"
      "TYPE is u8 s8 u16 s16 u32 s32 u64 s64 f32 f64 hex:N or text:N (N bytes).\n"
      "A NAME without a type speaks in engineering units (deg, kt, ft, MHz), with a type it is the stored\n"
      "number. So does an OFFSET without a type, when the plug-in has a meaning for it.\n"
      "\n  --timeout SECONDS   longest wait for an answer, 5 by default\n"
      "  --local             ask the window server on this computer (Windows; the default there)\n"
      "  --net HOST          ask the network server at this address or name (elsewhere the default: "
      "127.0.0.1)\n"
      "  COMMAND ... --find  ask the first network server that announces itself\n"
      "  COMMAND --help      more about one command\n"
      "\nExit status: 0 done; 1 no server, refused or no answer in time; 2 wrong usage, name, type or value.\n"
      "\n  offsetctl read heading ias 0x0330:u16\n"
      "  offsetctl write com1=118.70 0x0330:u16=16211\n"
      "  offsetctl watch altitude --rate 2 --seconds 60\n";
  return text;
}

}  // namespace ctl
