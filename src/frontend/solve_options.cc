// Vexil - exact integer optimization on lattices.
#include "frontend/solve_options.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <type_traits>

#include "frontend/read_options.h"
#include "numbers/strict_number.h"
#include "params/option_table.h"

namespace vexil {

namespace {

constexpr auto LEAST = std::numeric_limits<std::int64_t>::min();
constexpr auto MOST = std::numeric_limits<std::int64_t>::max();

/// A word that does something here: the range of its value, if that is a whole number, and what is
/// said of it.
struct Meaning {
  const char* key;
  std::int64_t least;
  std::int64_t most;
  const char* text;
};

constexpr std::array MEANINGS{
    Meaning{"help", 0, 1, "1: show this text, as --help does"},
    Meaning{"verb", 0, 2, "0: answer and report; 1: progress lines; 2: phases and counts too"},
    Meaning{"rtime", 0, MOST, "stop after so many seconds; 0: no limit"},
    Meaning{"sol", 0, MOST, "points wanted without targets, or within tnorm and snorm; 0: all"},
    Meaning{"tnorm", 0, 0, "wanted are stars with a target norm up to this; -inf: unset"},
    Meaning{"snorm", 0, 0, "wanted are stars with a slack norm up to this; -1: unset"},
    Meaning{"iters", -1, MOST, "rounds of the two searches; -1: any number"},
    Meaning{"eenum", 0, 1, "0: search without the enumeration"},
    Meaning{"beta", 2, 1000, "block size of the lattice reduction"},
    Meaning{"deep", 0, 1, "1: deep insertions in the lattice reduction"},
};

const Meaning* meaningOf(const String& key) {
  const auto found = std::find_if(MEANINGS.begin(), MEANINGS.end(),
                                  [&](const Meaning& meaning) { return key == meaning.key; });
  return found == MEANINGS.end() ? nullptr : &*found;
}

enum class Kind : std::uint8_t { FLAG, WHOLE, COUNT, REAL, NORM };

/// A word of the option table with the text of its value.
struct OptionWord {
  String key;
  Kind kind;
  String value;
};

template <typename V>
constexpr Kind KIND = std::is_same_v<V, bool>            ? Kind::FLAG
                      : std::is_same_v<V, long>          ? Kind::WHOLE
                      : std::is_same_v<V, unsigned long> ? Kind::COUNT
                                                         : Kind::REAL;

/// The table with its defaults.
std::vector<OptionWord> defaultWords() {
  std::vector<OptionWord> words;
  forEachOption([&](const auto& option) {
    words.push_back({option.key, KIND<decltype(option.initial)>, joined(option.initial)});
  });
  words.push_back({"snorm", Kind::NORM, "-1"});
  words.push_back({"tnorm", Kind::NORM, "-inf"});
  return words;
}

OptionWord& find(std::vector<OptionWord>& words, const String& key) {
  const auto found = std::find_if(words.begin(), words.end(),
                                  [&](const OptionWord& word) { return word.key == key; });
  if (found == words.end()) throw UsageException(joined("--", key, " is no option"));
  return *found;
}

[[noreturn]] void refuse(const OptionWord& word, const String& value, const String& wanted) {
  throw UsageException(joined("--", word.key, "=", value, ": ", wanted));
}

template <typename Number>
String wholeText(const OptionWord& word, const String& value, Number least, Number most) {
  Number number{};
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
  if (error == std::errc::result_out_of_range) refuse(word, value, "the number is out of range");
  if (error != std::errc() || end != value.data() + value.size()) {
    refuse(word, value, "not a whole number");
  }
  if (number < least) refuse(word, value, joined("the least value is ", least));
  if (number > most) refuse(word, value, joined("the greatest value is ", most));
  return std::to_string(number);
}

String numberText(const OptionWord& word, const String& value) {
  const bool inOnePiece = value.find_first_of(WHITE_SPACE) == String::npos;
  const auto number = inOnePiece ? strictNumber(value) : std::nullopt;
  if (!number) refuse(word, value, "not a number");
  if (word.kind == Kind::REAL) return value;
  if (word.key == "snorm" && *number < QQ(0) && *number != QQ(-1)) {
    refuse(word, value, "the least value is 0, or -1 for unset");
  }
  return toString(*number);
}

/// The text that stands for `value` in the option line.
String checkedText(const OptionWord& word, const String& value) {
  const Meaning* const meaning = meaningOf(word.key);
  switch (word.kind) {
    case Kind::FLAG:
      if (value.size() != 1 || value.find_first_of("01") != 0)
        refuse(word, value, "neither 0 nor 1");
      return value;
    case Kind::WHOLE:
      return meaning == nullptr ? wholeText<std::int64_t>(word, value, LEAST, MOST)
                                : wholeText(word, value, meaning->least, meaning->most);
    case Kind::COUNT:
      return wholeText<std::uint64_t>(word, value, 0, std::numeric_limits<std::uint64_t>::max());
    case Kind::REAL:
    case Kind::NORM:
      break;
  }
  return numberText(word, value);
}

/// Takes over "--key=value".
void takeWord(const std::string& word, std::vector<OptionWord>& words, SolveOptions& options) {
  const std::size_t equals = word.find('=');
  const String key = word.substr(2, equals == std::string::npos ? equals : equals - 2);
  OptionWord& option = find(words, key);
  if (equals == std::string::npos) {
    throw UsageException(joined(word, ": the value is missing, as in ", word, "=", option.value));
  }
  option.value = checkedText(option, word.substr(equals + 1));
  if (meaningOf(key) == nullptr) options.idle.push_back(key);
}

void takeNames(const std::string& word, SolveOptions& options) {
  if (word != "--names=0" && word != "--names=1") throw UsageException(word + ": neither 0 nor 1");
  options.names = word.back() == '1';
}

void takeFile(const std::string& word, SolveOptions& options) {
  if (word.empty()) throw UsageException("the name of the file is empty");
  if (!options.file.empty())
    throw UsageException(joined("two files: ", options.file, " and ", word));
  options.file = word;
}

String lineOf(const std::vector<OptionWord>& words) {
  String line;
  for (const OptionWord& word : words)
    line += (line.empty() ? "--" : " --") + word.key + "=" + word.value;
  return line;
}

/// The typed values of the words that count.
void takeValues(std::vector<OptionWord>& words, SolveOptions& options) {
  const auto whole = [&](const char* key) { return std::stoll(find(words, key).value); };
  const auto norm = [&](const char* key, const QQ& unset) {
    const QQ number(find(words, key).value);
    return number == unset ? std::nullopt : std::optional(number);
  };
  options.seconds = whole("rtime");
  options.wanted = whole("sol");
  options.tnorm = norm("tnorm", -QQ::INF());
  options.snorm = norm("snorm", QQ(-1));
  options.enumeration = whole("eenum") == 1;
  options.blockSize = whole("beta");
  options.deep = whole("deep") == 1;
  options.rounds = whole("iters");
  options.verbosity = whole("verb");
  if (whole("help") == 1) options.action = SolveOptions::Action::SHOW_HELP;
}

}  // namespace

SolveOptions parseSolveOptions(const std::vector<std::string>& words) {
  using Action = SolveOptions::Action;
  SolveOptions options;
  std::vector<OptionWord> table = defaultWords();
  bool areOptions = true;
  for (const std::string& word : words) {
    if (areOptions && word == "--") {
      areOptions = false;
    } else if (areOptions && (word == "--help" || word == "--version")) {
      options.action = word == "--help" ? Action::SHOW_HELP : Action::SHOW_VERSION;
      return options;
    } else if (areOptions && takeReadOption(word, options.reading)) {
      // taken
    } else if (areOptions && word.starts_with("--names=")) {
      takeNames(word, options);
    } else if (areOptions && word.starts_with("--")) {
      takeWord(word, table, options);
    } else if (areOptions && word.starts_with("-")) {
      throw UsageException(joined(word, " is no option"));
    } else {
      takeFile(word, options);
    }
  }
  takeValues(table, options);
  options.line = lineOf(table);
  if (options.action == Action::SOLVE && options.file.empty())
    throw UsageException("no file is named");
  return options;
}

String solveUsageLine() {
  return "Usage: vexil-solve [--key=value ...] model.opt|model.sol|model.lp|model.mps\n";
}

String solveHelpText() {
  String text =
      joined(solveUsageLine(),
             "\nSearches the program of model.opt for its best point, or for points, and keeps "
             "all that it\nfinds in model.sol. What it claims is proved in exact numbers.\n\n");
  constexpr std::size_t WIDTH = 16;
  String idle;
  for (const OptionWord& word : defaultWords()) {
    const Meaning* const meaning = meaningOf(word.key);
    if (meaning == nullptr) {
      idle += " " + word.key;
      continue;
    }
    const String shown = "  --" + word.key + "=" + word.value;
    text += shown + std::string(std::max(WIDTH, shown.size() + 2) - shown.size(), ' ') +
            meaning->text + "\n";
  }
  return text +
         "  --names=1     0: vectors in place of names, where the file has names\n"
         "  --targets=0   1: all target rows of an MPS file, not the first alone\n"
         "  --decimals=k  variables that are not integer are multiples of 10^-k (LP, MPS)\n"
         "\n  --help        this text\n  --version     the version\n"
         "  --            the words behind it are no options\n"
         "\nThe values shown are the defaults. Accepted, without effect here:\n " +
         idle +
         "\n\nThe first line of the output is the answer:\n"
         "  optimal         the best target norm, proved\n"
         "  feasible        no targets: as many points as wanted, all, or infinitely many\n"
         "  infeasible      proved: there is no point, or none within tnorm and snorm\n"
         "  reached         as many stars within tnorm and snorm as wanted, or all of them\n"
         "  unbounded       the target norm falls for ever, proved\n"
         "  best so far     stopped before an answer, with the best point\n"
         "  unknown         stopped before an answer, without a point\n"
         "\nExit status: 0 for one of the first five, 2 for the last two, 1 for a failure.\n";
}

}  // namespace vexil
