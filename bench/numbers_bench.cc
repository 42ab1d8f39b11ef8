// Vexil - exact integer optimization on lattices.
//
// The exact numbers, side by side with GMP where that is installed.
#include <benchmark/benchmark.h>

#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "numbers/convert.h"
#include "numbers/qq_vectors.h"

#ifdef VEXIL_HAVE_GMP
#include <gmpxx.h>
#endif

namespace {

using vexil::QQ;
using vexil::ZZ;

std::mt19937_64& generator() {
  static std::mt19937_64 random(20240607);
  return random;
}

std::string digits(std::size_t count) {
  std::uniform_int_distribution<int> digit('0', '9');
  std::string text(count, '1');
  for (std::size_t i = 1; i < count; ++i) text[i] = static_cast<char>(digit(generator()));
  return text;
}

enum Kind { WHOLE, FRACTION };

/// Numbers of 1 to 9 digits, or fractions of such.
std::vector<std::string> smallTexts(Kind kind) {
  std::uniform_int_distribution<std::size_t> length(1, 9);
  generator().seed(20240607);  // both sides get the same numbers
  std::vector<std::string> texts;
  for (int i = 0; i < 256; ++i) {
    std::string text = (i % 3 == 0 ? "-" : "") + digits(length(generator()));
    if (kind == FRACTION) text += '/' + digits(length(generator()));
    texts.push_back(text);
  }
  return texts;
}

template <typename T>
T number(const std::string& text) {
  return T(text);
}

#ifdef VEXIL_HAVE_GMP
template <>
mpq_class number<mpq_class>(const std::string& text) {
  mpq_class value(text);
  value.canonicalize();
  return value;
}
std::string print(const mpq_class& x) { return x.get_str(); }
std::string print(const mpz_class& x) { return x.get_str(); }
void read(const std::string& text, mpz_class& x) { x.set_str(text, 10); }
void multiply(const mpz_class& a, const mpz_class& b, mpz_class& r) { r = a * b; }
void divide(const mpz_class& a, const mpz_class& b, mpz_class& r) { r = a / b; }
void commonDivisor(const mpz_class& a, const mpz_class& b, mpz_class& r) { r = gcd(a, b); }
#endif
std::string print(const QQ& x) { return vexil::toString(x); }
std::string print(const ZZ& x) { return vexil::toString(x); }
void read(const std::string& text, ZZ& x) { fromString(x, text); }
void multiply(const ZZ& a, const ZZ& b, ZZ& r) { mul(a, b, r); }
void divide(const ZZ& a, const ZZ& b, ZZ& r) { div(a, b, r, r); }
void commonDivisor(const ZZ& a, const ZZ& b, ZZ& r) { gcd(a, b, r); }

template <typename T>
std::vector<T> smallNumbers(Kind kind) {
  std::vector<T> numbers;
  for (const std::string& text : smallTexts(kind)) numbers.push_back(number<T>(text));
  return numbers;
}

/// Calls `step` with the index of one of the 256 numbers; the index of its partner is one higher.
template <typename Step>
void cycle(benchmark::State& state, Step step) {
  for (std::size_t i = 0; auto _ : state) {
    step(i);
    i = (i + 1) % 255;
  }
}

template <typename T>
void parseText(benchmark::State& state) {
  const auto texts = smallTexts(static_cast<Kind>(state.range(0)));
  cycle(state, [&](std::size_t i) { benchmark::DoNotOptimize(number<T>(texts[i])); });
}

void canonicalize(QQ& /*x*/) {}
#ifdef VEXIL_HAVE_GMP
void canonicalize(mpq_class& x) { x.canonicalize(); }
#endif

template <typename T>
void readStream(benchmark::State& state) {
  std::string all;
  for (const std::string& text : smallTexts(static_cast<Kind>(state.range(0)))) all += text + ' ';
  std::istringstream in(all);
  T x;
  cycle(state, [&](std::size_t i) {
    if (i == 0) in.seekg(0);
    in >> x;
    canonicalize(x);
  });
}

template <typename T>
void printText(benchmark::State& state) {
  const auto numbers = smallNumbers<T>(static_cast<Kind>(state.range(0)));
  cycle(state, [&](std::size_t i) { benchmark::DoNotOptimize(print(numbers[i])); });
}

template <typename T>
void writeStream(benchmark::State& state) {
  const auto numbers = smallNumbers<T>(static_cast<Kind>(state.range(0)));
  std::ostringstream out;
  cycle(state, [&](std::size_t i) {
    if (i == 0) out.seekp(0);
    out << numbers[i];
  });
}

struct Plus {
  template <typename T>
  static T of(const T& a, const T& b) {
    return a + b;
  }
};
struct Minus {
  template <typename T>
  static T of(const T& a, const T& b) {
    return a - b;
  }
};
struct Times {
  template <typename T>
  static T of(const T& a, const T& b) {
    return a * b;
  }
};
struct Over {
  template <typename T>
  static T of(const T& a, const T& b) {
    return a / b;
  }
};

template <typename T, typename Operation>
void construct(benchmark::State& state) {
  const auto numbers = smallNumbers<T>(static_cast<Kind>(state.range(0)));
  cycle(state, [&](std::size_t i) {
    const T c = Operation::of(numbers[i], numbers[i + 1]);
    benchmark::DoNotOptimize(c);
  });
}

template <typename T>
void assignSum(benchmark::State& state) {
  const auto numbers = smallNumbers<T>(static_cast<Kind>(state.range(0)));
  T c;
  cycle(state, [&](std::size_t i) { c = numbers[i] + numbers[i + 1]; });
}

template <typename T>
void assignProduct(benchmark::State& state) {
  const auto numbers = smallNumbers<T>(static_cast<Kind>(state.range(0)));
  T c;
  cycle(state, [&](std::size_t i) { c = numbers[i] * numbers[i + 1]; });
}

template <typename T>
void compareNumbers(benchmark::State& state) {
  const auto numbers = smallNumbers<T>(static_cast<Kind>(state.range(0)));
  cycle(state, [&](std::size_t i) { benchmark::DoNotOptimize(numbers[i] < numbers[i + 1]); });
}

/// A scalar product of 255 terms.
template <typename T>
void sumOfProducts(benchmark::State& state) {
  const auto numbers = smallNumbers<T>(static_cast<Kind>(state.range(0)));
  for (auto _ : state) {
    T sum(0);
    for (std::size_t i = 0; i < 255; ++i) sum += numbers[i] * numbers[i + 1];
    benchmark::DoNotOptimize(sum);
  }
}

void scalarProduct(benchmark::State& state) {
  const auto numbers = smallNumbers<QQ>(static_cast<Kind>(state.range(0)));
  vexil::Vector<QQ> a;
  vexil::Vector<QQ> b;
  a.resize(255, false);
  b.resize(255, false);
  for (std::size_t i = 0; i < 255; ++i) {
    a.data[i + 1] = numbers[i];
    b.data[i + 1] = numbers[i + 1];
  }
  for (auto _ : state) benchmark::DoNotOptimize(a * b);
}

template <typename T>
void bigRead(benchmark::State& state) {
  generator().seed(20240607);
  const std::string text = digits(static_cast<std::size_t>(state.range(0)));
  T x;
  for (auto _ : state) read(text, x);
}

template <typename T>
void bigPrint(benchmark::State& state) {
  generator().seed(20240607);
  T x;
  read(digits(static_cast<std::size_t>(state.range(0))), x);
  for (auto _ : state) benchmark::DoNotOptimize(print(x));
}

/// `aDigits` and `bDigits` of the operands.
template <typename T, typename Operation>
void bigOperation(benchmark::State& state, Operation operation) {
  generator().seed(20240607);
  T a;
  T b;
  T r;
  read(digits(static_cast<std::size_t>(state.range(0))), a);
  read(digits(static_cast<std::size_t>(state.range(1))), b);
  for (auto _ : state) operation(a, b, r);
}

template <typename T>
void bigProduct(benchmark::State& state) {
  bigOperation<T>(state, [](const T& a, const T& b, T& r) { multiply(a, b, r); });
}
template <typename T>
void bigQuotient(benchmark::State& state) {
  bigOperation<T>(state, [](const T& a, const T& b, T& r) { divide(a, b, r); });
}
template <typename T>
void bigGcd(benchmark::State& state) {
  bigOperation<T>(state, [](const T& a, const T& b, T& r) { commonDivisor(a, b, r); });
}

void toFloat(benchmark::State& state) {
  const auto numbers = smallNumbers<QQ>(static_cast<Kind>(state.range(0)));
  cycle(state,
        [&](std::size_t i) { benchmark::DoNotOptimize(vexil::toFloat(numbers[i], false, false)); });
}

void fromFloat(benchmark::State& state) {
  QQ x;
  std::vector<vexil::dbl_t> values;
  for (const QQ& q : smallNumbers<QQ>(static_cast<Kind>(state.range(0)))) {
    values.push_back(vexil::toFloat(q, false, false));
  }
  cycle(state, [&](std::size_t i) { vexil::fromFloat(values[i], x); });
}

template <typename T>
void registerRationals(const std::string& name) {
  const auto both = [&](const char* operation, void (*run)(benchmark::State&)) {
    benchmark::RegisterBenchmark((operation + ("/" + name + "/whole")).c_str(), run)->Arg(WHOLE);
    benchmark::RegisterBenchmark((operation + ("/" + name + "/fraction")).c_str(), run)
        ->Arg(FRACTION);
  };
  both("parse text", parseText<T>);
  both("read stream", readStream<T>);
  both("print text", printText<T>);
  both("write stream", writeStream<T>);
  both("construct a+b", construct<T, Plus>);
  both("construct a-b", construct<T, Minus>);
  both("construct a*b", construct<T, Times>);
  both("construct a/b", construct<T, Over>);
  both("c = a+b", assignSum<T>);
  both("c = a*b", assignProduct<T>);
  both("a < b", compareNumbers<T>);
  both("sum += a*b", sumOfProducts<T>);
}

template <typename T>
void registerIntegers(const std::string& name) {
  const auto sized = [&](const char* operation, void (*run)(benchmark::State&),
                         std::initializer_list<std::vector<std::int64_t>> sizes) {
    auto* const benchmark = benchmark::RegisterBenchmark((operation + ("/" + name)).c_str(), run);
    for (const auto& size : sizes) benchmark->Args(size);
  };
  sized("digits to number", bigRead<T>, {{100000}});
  sized("number to digits", bigPrint<T>, {{100000}});
  sized("product", bigProduct<T>, {{100, 100}, {1000, 1000}, {10000, 10000}, {100000, 100000}});
  sized("quotient", bigQuotient<T>, {{60, 30}, {2000, 1000}});
  sized("gcd", bigGcd<T>, {{18, 18}, {50, 50}, {1000, 1000}});
}

[[maybe_unused]] const bool registered = [] {
  registerRationals<QQ>("QQ");
  registerIntegers<ZZ>("ZZ");
#ifdef VEXIL_HAVE_GMP
  registerRationals<mpq_class>("mpq_class");
  registerIntegers<mpz_class>("mpz_class");
#endif
  benchmark::RegisterBenchmark("scalar product/QQ/whole", scalarProduct)->Arg(WHOLE);
  benchmark::RegisterBenchmark("scalar product/QQ/fraction", scalarProduct)->Arg(FRACTION);
  benchmark::RegisterBenchmark("toFloat/QQ/whole", toFloat)->Arg(WHOLE);
  benchmark::RegisterBenchmark("toFloat/QQ/fraction", toFloat)->Arg(FRACTION);
  benchmark::RegisterBenchmark("fromFloat/QQ/whole", fromFloat)->Arg(WHOLE);
  benchmark::RegisterBenchmark("fromFloat/QQ/fraction", fromFloat)->Arg(FRACTION);
  return true;
}();

}  // namespace
