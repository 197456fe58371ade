#include "words.h"

#include <charconv>
#include <vector>

namespace ctl {

namespace {

struct Word {
  int64_t number;
  std::string text;
};

bool BeginsLike(std::string_view text, std::string_view beginning) {
  const auto lower = [](char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  };
  if (beginning.size() > text.size()) return false;
  for (size_t i = 0; i < beginning.size(); ++i) {
    if (lower(text[i]) != lower(beginning[i])) return false;
  }
  return true;
}

// "0 up" of a meaning; ranges ("0 to 255") name nothing.
void AddWord(std::string_view part, std::vector<Word>* words) {
  while (part.starts_with(' ')) part.remove_prefix(1);
  int64_t number = 0;
  const auto result = std::from_chars(part.data(), part.data() + part.size(), number);
  part.remove_prefix(static_cast<size_t>(result.ptr - part.data()));
  if (result.ec != std::errc() || part.size() < 2 || part[0] != ' ' || part.starts_with(" to ")) return;
  words->push_back({number, std::string(part.substr(1))});
}

std::vector<Word> WordsOf(const OffsetName& row) {
  std::vector<Word> words;
  if (row.show == Form::Flag) return {{0, "off"}, {1, "on"}};
  if (row.show != Form::Number) return words;
  for (const NamedNumber& choice : row.choices) words.push_back({choice.number, choice.name});
  std::string_view text = row.meaning;
  const size_t colon = text.find(": ");
  if (!words.empty() || colon == std::string_view::npos) return words;
  text = text.substr(colon + 2);
  text = text.substr(0, text.find(';'));
  for (size_t comma = 0; comma != std::string_view::npos;) {
    comma = text.find(',');
    AddWord(text.substr(0, comma), &words);
    if (comma != std::string_view::npos) text.remove_prefix(comma + 1);
  }
  return words;
}

}  // namespace

bool FindWord(const OffsetName& row, std::string_view word, int64_t* number) {
  if (row.show == Form::Flag) {
    if (BeginsLike("true", word) || BeginsLike("yes", word)) word = "on";
    if (BeginsLike("false", word) || BeginsLike("no", word)) word = "off";
  }
  size_t found = 0;
  for (const Word& known : WordsOf(row)) {
    if (word.empty() || !BeginsLike(known.text, word)) continue;
    *number = known.number;
    if (word.size() == known.text.size()) return true;
    ++found;
  }
  return found == 1;
}

std::string WordFor(const OffsetName& row, int64_t number) {
  if (row.show == Form::Flag) return "";
  for (const Word& word : WordsOf(row)) {
    if (word.number == number) return word.text;
  }
  return "";
}

std::string WordsText(const OffsetName& row) {
  std::string text;
  for (const Word& word : WordsOf(row)) {
    text += (text.empty() ? "" : ", ") + std::to_string(word.number) + " " + word.text;
  }
  return text;
}

}  // namespace ctl
