#include "overlay/GraceCountdownState.h"

#include "platform/common/Bytes.h"

namespace dormel {
namespace {

constexpr std::size_t LONGEST_TEXT = 256;

}  // namespace

std::string encoded(const GraceCountdownState& state) {
  const Ink& ink = state.urgencyColor;
  return ByteWriter()
      .put(state.progress)
      .put(ink.red)
      .put(ink.green)
      .put(ink.blue)
      .put(ink.alpha)
      .putText(state.text)
      .take();
}

std::optional<GraceCountdownState> decodedGraceCountdown(std::string_view bytes) {
  ByteReader from(bytes);
  GraceCountdownState state;
  Ink& ink = state.urgencyColor;
  for (double* part : {&state.progress, &ink.red, &ink.green, &ink.blue, &ink.alpha}) *part = from.get<double>();
  state.text = from.getText(LONGEST_TEXT);
  if (!from.isExact()) return {};
  return state;
}

}  // namespace dormel
