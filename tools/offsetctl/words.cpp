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

bool IsSameWord(std::string_view a, std::string_view b) { return a.size() == b.size() && BeginsLike(a, b); }

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

// Single bits only: a wider group holds a number.
std::vector<Word> BitsOf(const OffsetName& row) {
  std::vector<Word> bits;
  for (const NamedNumber& choice : row.choices) {
    if (choice.width == 1) bits.push_back({int64_t{1} << choice.number, choice.name});
  }
  return bits;
}

// The number behind the one word that is it or alone begins so.
bool FindAmong(const std::vector<Word>& words, std::string_view word, int64_t* number) {
  size_t found = 0;
  for (const Word& known : words) {
    if (word.empty() || !BeginsLike(known.text, word)) continue;
    *number = known.number;
    if (word.size() == known.text.size()) return true;
    ++found;
  }
  return found == 1;
}

// "navigation+beacon", "on" for all that have a name, "off".
bool FindBits(const OffsetName& row, std::string_view text, int64_t* number) {
  const std::vector<Word> bits = BitsOf(row);
  if (bits.empty()) return false;
  int64_t sum = 0;
  if (IsSameWord(text, "on") || IsSameWord(text, "all")) {
    for (const Word& bit : bits) sum |= bit.number;
  } else if (!IsSameWord(text, "off") && !IsSameWord(text, "none")) {
    for (size_t plus = 0; plus != std::string_view::npos;) {
      plus = text.find('+');
      int64_t one = 0;
      if (!FindAmong(bits, text.substr(0, plus), &one)) return false;
      sum |= one;
      if (plus != std::string_view::npos) text.remove_prefix(plus + 1);
    }
  }
  *number = sum;
  return true;
}

}  // namespace

bool FindWord(const OffsetName& row, std::string_view word, int64_t* number) {
  if (row.show == Form::Bits) return FindBits(row, word, number);
  if (row.show == Form::Flag) {
    if (BeginsLike("true", word) || BeginsLike("yes", word)) word = "on";
    if (BeginsLike("false", word) || BeginsLike("no", word)) word = "off";
  }
  return FindAmong(WordsOf(row), word, number);
}

std::string WordFor(const OffsetName& row, int64_t number) {
  if (row.show == Form::Flag) return "";
  if (row.show == Form::Bits) {
    std::string text;
    for (const Word& bit : BitsOf(row)) {
      if ((number & bit.number) != 0) text += (text.empty() ? "" : " + ") + bit.text;
    }
    return text;
  }
  for (const Word& word : WordsOf(row)) {
    if (word.number == number) return word.text;
  }
  return "";
}

std::string WordsText(const OffsetName& row) {
  std::string text;
  if (row.show == Form::Bits) {
    for (const Word& bit : BitsOf(row)) text += (text.empty() ? "" : " + ") + bit.text;
    return text.empty() ? "" : text + ", on, off";
  }
  for (const Word& word : WordsOf(row)) {
    text += (text.empty() ? "" : ", ") + std::to_string(word.number) + " " + word.text;
  }
  return text;
}

}  // namespace ctl
