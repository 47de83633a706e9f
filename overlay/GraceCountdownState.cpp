#include "overlay/GraceCountdownState.h"

#include "platform/common/Bytes.h"

namespace dormel {
namespace {

constexpr std::size_t LONGEST_TEXT = 256;

}  // namespace

std::string encoded(const GraceCountdownState& state) {
  const Color& color = state.urgencyColor;
  return ByteWriter()
      .put(state.progress)
      .put(color.red)
      .put(color.green)
      .put(color.blue)
      .put(color.alpha)
      .putText(state.text)
      .take();
}

std::optional<GraceCountdownState> decodedGraceCountdown(std::string_view bytes) {
  ByteReader from(bytes);
  GraceCountdownState state;
  Color& color = state.urgencyColor;
  for (double* part : {&state.progress, &color.red, &color.green, &color.blue, &color.alpha})
    *part = from.get<double>();
  state.text = from.getText(LONGEST_TEXT);
  if (!from.isExact()) return {};
  return state;
}

}  // namespace dormel
