// SPDX-License-Identifier: MIT

#include "linux/transfer/ContentCoding.h"

#include <brotli/decode.h>
#include <zlib.h>

#include <array>
#include <memory>
#include <string>

#include "common/BoundedText.h"
#include "net/HeaderText.h"

namespace quillforth::platform {

namespace {

constexpr std::size_t kMaxCodings = 5;
constexpr int kRawDeflate = -MAX_WBITS;
constexpr int kGzip = MAX_WBITS + 16;

using Piece = std::array<char, 64UL * 1024>;
enum class Step { more, end, fault };

class Decoder {
 public:
  virtual ~Decoder() = default;
  /// Moves `input` on, and sets `length` to the number of bytes that are in `output` now. When it gives
  /// `more` without having taken or given a byte, the input has run out.
  virtual Step step(std::string_view& input, Piece& output, std::size_t& length) = 0;
  /// After the end: whether another stream of the same coding may follow.
  virtual bool beginAgain() { return false; }
};

class Inflater final : public Decoder {
 public:
  explicit Inflater(int windowBits)
      : isGzip_(windowBits == kGzip), hasStarted_(inflateInit2(&stream_, windowBits) == Z_OK) {}
  ~Inflater() override {
    if (hasStarted_) inflateEnd(&stream_);
  }
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;

  Step step(std::string_view& input, Piece& output, std::size_t& length) override {
    if (!hasStarted_) return Step::fault;
    stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(input.data()));  // zlib only reads it
    stream_.avail_in = static_cast<uInt>(input.size());
    stream_.next_out = reinterpret_cast<Bytef*>(output.data());
    stream_.avail_out = static_cast<uInt>(output.size());
    const int result = inflate(&stream_, Z_NO_FLUSH);
    input = input.substr(input.size() - stream_.avail_in);
    length = output.size() - stream_.avail_out;
    if (result == Z_STREAM_END) return Step::end;
    return result == Z_OK || result == Z_BUF_ERROR ? Step::more : Step::fault;
  }
  // RFC 1952, section 2.2.
  bool beginAgain() override { return isGzip_ && inflateReset(&stream_) == Z_OK; }

 private:
  z_stream stream_{};
  const bool isGzip_;
  const bool hasStarted_;
};

class BrotliDecoder final : public Decoder {
 public:
  Step step(std::string_view& input, Piece& output, std::size_t& length) override {
    if (!state_) return Step::fault;
    std::size_t inputLeft = input.size(), outputLeft = output.size();
    const auto* nextInput = reinterpret_cast<const std::uint8_t*>(input.data());
    auto* nextOutput = reinterpret_cast<std::uint8_t*>(output.data());
    const BrotliDecoderResult result = BrotliDecoderDecompressStream(state_.get(), &inputLeft, &nextInput,
                                                                     &outputLeft, &nextOutput, nullptr);
    input = input.substr(input.size() - inputLeft);
    length = output.size() - outputLeft;
    if (result == BROTLI_DECODER_RESULT_SUCCESS) return Step::end;
    return result == BROTLI_DECODER_RESULT_ERROR ? Step::fault : Step::more;
  }

 private:
  std::unique_ptr<BrotliDecoderState, decltype(&BrotliDecoderDestroyInstance)> state_{
      BrotliDecoderCreateInstance(nullptr, nullptr, nullptr), &BrotliDecoderDestroyInstance};
};

// Some servers leave out what "deflate" has around the data (RFC 1950, section 2.2).
bool HasZlibHeader(std::string_view body) {
  const auto byte = [body](std::size_t i) { return static_cast<unsigned char>(body[i]); };
  return body.size() >= 2 && (byte(0) & 0xf) == Z_DEFLATED && (byte(0) * 256 + byte(1)) % 31 == 0;
}

// Null for a coding that is not known.
std::unique_ptr<Decoder> DecoderFor(const std::string& coding, std::string_view body) {
  const auto is = [&coding](std::string_view name) { return common::EqualsNoCase(coding, name); };
  if (is("gzip") || is("x-gzip")) return std::make_unique<Inflater>(kGzip);
  if (is("deflate")) return std::make_unique<Inflater>(HasZlibHeader(body) ? MAX_WBITS : kRawDeflate);
  if (is("br")) return std::make_unique<BrotliDecoder>();
  return nullptr;
}

TransferOutcome Decode(Decoder& decoder, qsizetype maxLength, QByteArray& body) {
  QByteArray decoded;
  std::string_view input(body.constData(), static_cast<std::size_t>(body.size()));
  const auto piece = std::make_unique<Piece>();
  for (Step step = Step::more; step == Step::more;) {
    const std::size_t inputLength = input.size();
    std::size_t length = 0;
    step = decoder.step(input, *piece, length);
    const bool isStuck = step == Step::more && length == 0 && input.size() == inputLength;
    if (step == Step::end && !input.empty()) step = decoder.beginAgain() ? Step::more : Step::fault;
    if (step == Step::fault || isStuck) return {OutcomeKind::brokenOff};
    if (static_cast<qsizetype>(length) > maxLength - decoded.size()) return {OutcomeKind::tooLong};
    decoded.append(piece->data(), static_cast<qsizetype>(length));
  }
  body = std::move(decoded);
  return {};
}

}  // namespace

TransferOutcome UndoContentCodings(const std::vector<std::string_view>& fields, qsizetype maxLength,
                                   QByteArray& body) {
  std::vector<std::string> codings;
  for (const std::string_view field : fields) {
    ParameterScanner scanner(field, ',');
    while (const std::optional<HeaderParameter> coding = scanner.next()) {
      codings.emplace_back(coding->name);
    }
  }
  std::erase_if(codings, [](const std::string& coding) { return common::EqualsNoCase(coding, "identity"); });
  if (codings.size() > kMaxCodings) return {OutcomeKind::brokenOff};
  for (; !codings.empty() && !body.isEmpty(); codings.pop_back()) {
    const std::unique_ptr<Decoder> decoder =
        DecoderFor(codings.back(), {body.constData(), static_cast<std::size_t>(body.size())});
    if (!decoder) return {OutcomeKind::unknownCoding};
    if (TransferOutcome outcome = Decode(*decoder, maxLength, body); !outcome.isWhole()) return outcome;
  }
  return {};
}

}  // namespace quillforth::platform
