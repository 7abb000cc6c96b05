#include "jmd/jmd_reader.h"

#include <array>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace px::jmd {

namespace {

constexpr size_t kReadChunk = 1 << 20;   // bytes read from the file at a time
constexpr size_t kLineKeyLimit = 127;    // characters kept of a line's first token

// White space of the classic locale, looked up rather than compared: the
// tokenizer asks for every character of the file.
constexpr std::array<bool, 256> kBlanks = [] {
  std::array<bool, 256> blanks{};
  for (char c : {' ', '\t', '\n', '\v', '\f', '\r'}) blanks[static_cast<unsigned char>(c)] = true;
  return blanks;
}();

inline bool is_blank(char c) { return kBlanks[static_cast<unsigned char>(c)]; }

// The first character from p on that ends a token's plain run (white space
// or a double quote), or end. Most tokens are such a run alone; sixteen
// characters are looked at a time where the processor allows it.
inline const char* plain_run_end(const char* p, const char* end) {
#ifdef __SSE2__
  const __m128i space = _mm_set1_epi8(' ');
  const __m128i quote = _mm_set1_epi8('"');
  const __m128i tab = _mm_set1_epi8('\t');
  const __m128i four = _mm_set1_epi8(4);
  while (end - p >= 16) {
    __m128i chars = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    // TAB, LF, VT, FF and CR are TAB + 0..4.
    __m128i from_tab = _mm_sub_epi8(chars, tab);
    __m128i control = _mm_cmpeq_epi8(_mm_min_epu8(from_tab, four), from_tab);
    __m128i ends = _mm_or_si128(
        _mm_or_si128(_mm_cmpeq_epi8(chars, space), _mm_cmpeq_epi8(chars, quote)), control);
    if (int mask = _mm_movemask_epi8(ends); mask != 0) return p + __builtin_ctz(static_cast<unsigned>(mask));
    p += 16;
  }
#endif
  while (p < end && *p != '"' && !is_blank(*p)) ++p;
  return p;
}

// "!p %s %s %s %s": the line key and the values of the record's first four
// fields after Deleted.
std::string first_four_values(const TableSchema& schema, std::span<const char> record) {
  std::string text(schema.line_key);
  for (size_t i = 1; i <= 4; ++i) {
    text += ' ';
    text += field_text(record, schema.fields[i]);
  }
  return text;
}

}  // namespace

LineSource::LineSource(std::FILE* file) : file_(file), buffer_(kReadChunk) {
  // Empty, but at the buffer: a refill moves what is left from there.
  data_ = std::string_view(buffer_.data(), buffer_.data());
}

LineSource::LineSource(std::string_view text) : data_(text), at_end_(true) {}

void LineSource::fill() {
  if (at_end_ || data_.size() > kLineLimit) return;
  size_t kept = data_.size();
  std::memmove(buffer_.data(), data_.data(), kept);
  while (kept < buffer_.size()) {
    size_t got = std::fread(buffer_.data() + kept, 1, buffer_.size() - kept, file_);
    kept += got;
    if (got == 0) {
      at_end_ = true;
      break;
    }
  }
  data_ = std::string_view(buffer_.data(), kept);
}

bool LineSource::next(std::string_view& line) {
  fill();
  if (data_.empty()) return false;
  size_t window = std::min(data_.size(), kLineLimit);
  size_t length = window;
  size_t consumed = window;
  if (const void* newline = std::memchr(data_.data(), '\n', window)) {
    length = static_cast<size_t>(static_cast<const char*>(newline) - data_.data());
    consumed = length + 1;
    if (length > 0 && data_[length - 1] == '\r') --length;
  } else if (window == kLineLimit && data_.size() > window && data_[window] == '\n' &&
             data_[window - 1] == '\r') {
    // CR LF is one newline, so it still ends this piece.
    length = window - 1;
    consumed = window + 1;
  }
  line = data_.substr(0, length);
  if (const void* nul = std::memchr(line.data(), '\0', line.size())) {
    line = line.substr(0, static_cast<size_t>(static_cast<const char*>(nul) - line.data()));
  }
  data_.remove_prefix(consumed);
  return true;
}

bool Tokenizer::next(std::string_view& token, size_t limit, bool& cut) {
  const char* p = line_.data() + pos_;
  const char* const end = line_.data() + line_.size();
  while (p < end && is_blank(*p)) ++p;
  const char* start = p;
  p = plain_run_end(p, end);
  size_t length = static_cast<size_t>(p - start);
  cut = length > limit;
  if (p == end || *p != '"') {
    // No quote: the token is a piece of the line as it stands.
    pos_ = static_cast<size_t>(p - line_.data());
    token = std::string_view(start, std::min(length, limit));
    return length > 0;
  }
  scratch_.assign(start, std::min(length, limit));
  auto keep = [&](const char* from, size_t count) {
    size_t room = limit - scratch_.size();
    if (count > room) {
      cut = true;
      count = room;
    }
    scratch_.append(from, count);
  };
  bool quoted = false;
  while (p < end && *p == '"') {
    if (p + 1 < end && p[1] == '"') {
      keep(p, 1);
      p += 2;
    } else {
      quoted = !quoted;
      ++p;
    }
    // The run of characters up to the next quote, or (outside quotes) up to
    // white space, is kept as it stands.
    const char* run = p;
    if (quoted) {
      while (p < end && *p != '"') ++p;
    } else {
      p = plain_run_end(p, end);
    }
    keep(run, static_cast<size_t>(p - run));
  }
  pos_ = static_cast<size_t>(p - line_.data());
  token = scratch_;
  return true;
}

void parse_record_fields(Tokenizer& tokens, const TableSchema& schema, std::span<char> record,
                         Reporter& reporter) {
  set_char_field(record, schema.fields[0], kNotDeleted);
  std::string_view token;
  for (size_t i = 1; i < schema.fields.size(); ++i) {
    const FieldDef& field = schema.fields[i];
    // Only strings are cut to their field; other tokens are taken whole and
    // converted.
    bool is_string = field.type == kTypeText;
    size_t limit = is_string ? field.width - 1 : kLineLimit;
    bool cut = false;
    tokens.next(token, limit, cut);
    set_field_text(record, field, token);
    if (cut && is_string) reporter.message(kMsgValueCut, {std::string(token)});
  }
}

std::string refused_record_text(int slot, std::span<const char> record) {
  const TableSchema& schema = table_schema(slot);
  if (slot != kMemoryTable) return first_four_values(schema, record);
  std::string text(schema.line_key);
  text += ' ';
  text += string_field(record, schema.fields[1]);
  text += ' ';
  text += std::to_string(int_field(record, schema.fields[2]));
  return text;
}

bool read_jmd(LineSource& lines, const std::string& path, Reporter& reporter,
              const AddRecord& add) {
  std::string_view line;
  if (!lines.next(line) || !line.starts_with(kHeader)) {
    reporter.message(kMsgBadHeader, {path});
    return false;
  }
  reporter.trace("jmd.c: jmd file opened and verified");

  std::array<std::vector<char>, kTableCount> records;
  for (int slot = 0; slot < kTableCount; ++slot) {
    records[static_cast<size_t>(slot)].assign(table_schema(slot).record_size, '\0');
  }
  std::string_view key;
  while (lines.next(line)) {
    Tokenizer tokens(line);
    bool cut = false;
    if (!tokens.next(key, kLineKeyLimit, cut) || key.size() < 2 || key[0] != '!') continue;
    int slot = slot_for_letter(key[1]);
    if (slot < 0) continue;
    std::vector<char>& record = records[static_cast<size_t>(slot)];
    parse_record_fields(tokens, table_schema(slot), record, reporter);
    if (!add(slot, record)) {
      reporter.message(kMsgRecordRefused, {refused_record_text(slot, record)});
      return false;
    }
  }
  return true;
}

}  // namespace px::jmd
