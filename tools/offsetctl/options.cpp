#include "options.h"

#include "command_lines.h"
#include "numbers.h"

namespace ctl {

namespace {

bool Fail(std::string* error, const std::string& text) {
  *error = text;
  return false;
}

// One option: exactly one of the targets is given.
struct Option {
  const char* name;
  unsigned commands = 0;  // bits of which one is enough
  bool Options::*flag = nullptr;
  std::string Options::*text = nullptr;
  const char* about = "";  // of a text: what it takes
  double Options::*number = nullptr;
  uint32_t Options::*whole = nullptr;
  double least = 0, most = 0;
};
constexpr Option knownOptions[] = {
    {.name = "--json", .commands = takesJson, .flag = &Options::json},
    {.name = "--local", .commands = takesServer | takesWay, .flag = &Options::local},
    {.name = "--find", .commands = takesServer | takesWay, .flag = &Options::find},
    {.name = "--confirm", .commands = takesConfirm, .flag = &Options::confirm},
    {.name = "--loop", .commands = takesLoop, .flag = &Options::loop},
    {.name = "--net",
     .commands = takesServer | takesWay,
     .text = &Options::net,
     .about = "a computer's name or address"},
    {.name = "--log", .commands = takesLog, .text = &Options::log, .about = "the plug-in's log file"},
    {.name = "--folder", .commands = takesFolder, .text = &Options::folder, .about = "the plug-in's folder"},
    {.name = "--listen",
     .commands = takesListen,
     .text = &Options::listen,
     .about = "an address of this computer"},
    {.name = "--note", .commands = takesNote, .text = &Options::note, .about = "a line of text"},
    {.name = "--token", .commands = takesWeb, .text = &Options::token, .about = "8 to 128 characters"},
    {.name = "--panels", .commands = takesWeb, .text = &Options::panels, .about = "a folder of HTML files"},
    {.name = "--recordings", .commands = takesWeb, .text = &Options::recordings, .about = "a folder"},
    {.name = "--port", .commands = takesWeb, .whole = &Options::port, .least = 0, .most = 65535},
    {.name = "--timeout",
     .commands = takesServer | takesTimeout,
     .number = &Options::timeout,
     .least = 0.01,
     .most = 3600},
    {.name = "--rate", .commands = takesRate, .number = &Options::rate, .least = 0.01, .most = 1000},
    {.name = "--seconds", .commands = takesSeconds, .number = &Options::seconds, .least = 0.01, .most = 1e6},
    {.name = "--speed", .commands = takesSpeed, .number = &Options::speed, .least = 0.01, .most = 1000},
    {.name = "--count", .commands = takesCount, .whole = &Options::count, .least = 1, .most = UINT32_MAX},
};

const Option* FindOption(const std::string& name) {
  for (const Option& option : knownOptions) {
    if (name == option.name) return &option;
  }
  return nullptr;
}

// The value behind an option. Returns true, or false with a sentence in `error`.
bool TakeValue(const Option& option, const std::string& value, Options* options, std::string* error) {
  const std::string name = option.name;
  if (option.text != nullptr) {
    options->*option.text = value;
    return (!value.empty() && value[0] != '-') || Fail(error, name + " takes " + option.about);
  }
  if (option.number != nullptr) {
    double parsed = 0;
    if (ParseReal(value, &parsed) && parsed >= option.least && parsed <= option.most) {
      options->*option.number = parsed;
      return true;
    }
    return Fail(error, name + " takes a number from " + RealText(option.least) + " to " +
                           RealText(option.most) + ", not \"" + value + "\"");
  }
  uint32_t& whole = options->*option.whole;
  return (ParseUnsigned(value, static_cast<uint32_t>(option.most), &whole) && whole >= option.least) ||
         Fail(error, name + " takes a whole number from " + RealText(option.least) +
                         (option.most < UINT32_MAX ? " to " + RealText(option.most) : "") + ", not \"" + value +
                         "\"");
}

// What stands on the command line, before it is known whether the command takes it.
struct Words {
  std::vector<std::string> plain, behind;  // behind "--"
  std::vector<const Option*> options;
  bool ended = false;  // there was a "--"
};

// Returns true, or false with a sentence in `error`.
bool Sort(const std::vector<std::string>& words, Words* sorted, Options* options, std::string* error) {
  for (size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    if (sorted->ended) {
      sorted->behind.push_back(word);
    } else if (word == "--") {
      sorted->ended = true;
    } else if (word == "--help" || word == "-h") {
      options->help = true;
    } else if (word == "--version") {
      sorted->plain.push_back("version");
    } else if (word.size() < 2 || word[0] != '-') {
      sorted->plain.push_back(word);
    } else {
      const size_t equals = word.find('=');
      const Option* option = FindOption(word.substr(0, equals));
      if (option == nullptr) {
        return Fail(error, "no option " + word.substr(0, equals) + ": see offsetctl --help");
      }
      sorted->options.push_back(option);
      if (option->flag != nullptr) {
        if (equals != std::string::npos) return Fail(error, std::string(option->name) + " takes no value");
        options->*option->flag = true;
        continue;
      }
      std::string value;
      if (equals != std::string::npos) {
        value = word.substr(equals + 1);
      } else if (i + 1 < words.size()) {
        value = words[++i];
      }
      if (!TakeValue(*option, value, options, error)) return false;
    }
  }
  return true;
}

const CommandLine* FindCommand(const std::string& word) {
  for (const CommandLine& line : CommandLines()) {
    if (word == line.word) return &line;
  }
  return nullptr;
}

// The command's line, from the first word that is no option; `--find` alone is a command, too. Null with a
// sentence in `error`.
const CommandLine* TakeCommand(Words* words, Options* options, std::string* error) {
  if (words->plain.empty()) {
    if (options->find) {
      options->find = false;
      std::erase_if(words->options, [](const Option* option) { return option->flag == &Options::find; });
      return LineOf(Command::Find);
    }
    Fail(error, "a command is missing: see offsetctl --help");
    return nullptr;
  }
  const std::string word = words->plain[0];
  words->plain.erase(words->plain.begin());
  const CommandLine* line = FindCommand(word);
  if (line == nullptr) Fail(error, "no command \"" + word + "\": see offsetctl --help");
  return line;
}

bool CheckWay(const Options& options, std::string* error) {
  if (options.local + options.find + !options.net.empty() <= 1) return true;
  return Fail(error, "--local, --net and --find are three ways to the server: choose one");
}

bool CheckItems(const CommandLine& line, const Options& options, std::string* error) {
  const size_t items = options.items.size();
  const bool isConform = line.command == Command::Conform;
  const bool tooFew = items < line.fewest || (isConform && options.client.empty());
  if (!tooFew && items <= line.most) return true;
  return Fail(error,
              std::string(tooFew ? "something is missing" : "too much is given") + ": offsetctl " + line.usage);
}

bool CheckAllowed(const CommandLine& line, const Words& words, std::string* error) {
  for (const Option* option : words.options) {
    if (option->commands & line.options) continue;
    return Fail(error, std::string(line.word) + " has no option " + option->name + ": see offsetctl " +
                           line.word + " --help");
  }
  return true;
}

}  // namespace

bool ParseOptions(const std::vector<std::string>& words, Options* options, std::string* error) {
  *options = {};
  Words sorted;
  if (!Sort(words, &sorted, options, error)) return false;
  if (options->help && sorted.plain.empty()) {
    options->command = options->find ? Command::Find : Command::None;
    return true;
  }
  const CommandLine* line = TakeCommand(&sorted, options, error);
  if (line == nullptr) return false;
  options->command = line->command;
  options->items = sorted.plain;
  if (line->command == Command::Conform) {
    options->client = sorted.behind;
  } else {
    options->items.insert(options->items.end(), sorted.behind.begin(), sorted.behind.end());
  }
  if (!options->help && !CheckItems(*line, *options, error)) return false;
  if (line->command == Command::Help) {
    const CommandLine* asked = options->items.empty() ? nullptr : FindCommand(options->items[0]);
    if (asked == nullptr && !options->items.empty()) {
      return Fail(error, "no command \"" + options->items[0] + "\": see offsetctl help");
    }
    options->help = true;
    options->command = asked != nullptr ? asked->command : Command::None;
    return true;
  }
  return options->help || (CheckAllowed(*line, sorted, error) && CheckWay(*options, error));
}

}  // namespace ctl
