#include "onboarding/qml/BeatBridge.h"

#include <QGuiApplication>
#include <QVariantMap>
#include <algorithm>
#include <array>
#include <utility>

#include "onboarding/WheelQuestionBeat.h"
#include "platform/linux/qt/QtStrings.h"

namespace dormel {
namespace {

using Kind = OnbElement::Kind;

/// In the order of OnbElement::Kind; OnbElement.qml knows them.
constexpr std::array KINDS{"mark", "headline", "sub",   "kicker", "whisper", "line",       "note",  "figure",
                           "fact", "sources",  "wheel", "choice", "chips",   "permission", "scene", "button"};
static_assert(KINDS.size() == static_cast<std::size_t>(Kind::button) + 1);

constexpr QChar NO_BREAK_SPACE(0xa0);
// A notch of a common wheel is 120 eighths of a degree and counts as 15 points.
constexpr double ANGLE_PER_POINT = 8;

/// On X11 the number of pixels is whatever the driver takes for one.
bool knowsPixels() { return QGuiApplication::platformName() != QLatin1String("xcb"); }

QString withFirmEnds(QString text) {
  if (text.startsWith(QLatin1Char(' '))) text[0] = NO_BREAK_SPACE;
  if (text.endsWith(QLatin1Char(' '))) text[text.size() - 1] = NO_BREAK_SPACE;
  return text;
}

std::vector<OnbSpan> spansOf(const OnbElement& element) {
  const bool isRead = element.kind == Kind::headline || element.kind == Kind::line;
  return isRead ? headlineSpans(*element.text) : std::vector<OnbSpan>{{*element.text}};
}

QString wordsOf(const OnbElement& element) { return QString::fromStdString(plainText(spansOf(element))); }

QString markupOf(const OnbElement& element) {
  const std::vector<OnbSpan> spans = spansOf(element);
  QString markup;
  if (std::none_of(spans.begin(), spans.end(), [](const OnbSpan& span) { return span.strong; })) return markup;
  for (const OnbSpan& span : spans) {
    const QString piece = QString::fromStdString(span.text).toHtmlEscaped();
    markup += span.strong ? QStringLiteral("<i>%1</i>").arg(piece) : piece;
  }
  return markup;
}

QVariantList chosenOf(const OnbElement& element) {
  QVariantList chosen;
  for (const std::size_t part : *element.chosen) chosen << static_cast<int>(part);
  return chosen;
}

}  // namespace

BeatBridge::BeatBridge(std::shared_ptr<OnboardingScreen> screen) : screen_(std::move(screen)) {
  if (auto* question = dynamic_cast<WheelQuestionBeat*>(screen_.get())) wheel_ = &question->wheel();
  observation_ = screen_->observe([this] {
    emit dataChanged(index(0), index(rowCount() - 1));
    emit changed();
  });
}

QString BeatBridge::name() const {
  for (const OnbElement& element : screen_->elements()) {
    if (!element.text->empty()) return wordsOf(element);
  }
  return {};
}

int BeatBridge::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(screen_->elements().size());
}

QVariant BeatBridge::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) return {};
  const OnbElement& element = screen_->elements().at(static_cast<std::size_t>(index.row()));
  switch (role) {
    case kind:
      return QLatin1String(KINDS.at(static_cast<std::size_t>(element.kind)));
    case words:
      return wordsOf(element);
    case markup:
      return markupOf(element);
    case spans:
      return spanList(spansOf(element));
    case parts:
      return qtStrings(*element.parts);
    case chosen:
      return chosenOf(element);
    case above:
      return element.style.above;
    case size:
      return element.style.size;
    case quiet:
      return element.style.quiet;
    case on:
      return element.on();
    case available:
      return *element.enabled;
    default:
      return {};
  }
}

QHash<int, QByteArray> BeatBridge::roleNames() const {
  return {{kind, "kind"},   {words, "words"},   {markup, "markup"},      {spans, "spans"},
          {parts, "parts"}, {chosen, "chosen"}, {above, "above"},        {size, "size"},
          {quiet, "quiet"}, {on, "on"},         {available, "available"}};
}

void BeatBridge::press(int element, int part) const {
  screen_->press(screen_->elements().at(static_cast<std::size_t>(element)), static_cast<std::size_t>(part));
}

bool BeatBridge::pressButton() const {
  const OnbElement* button = screen_->find(Kind::button);
  if (button != nullptr) screen_->press(*button);
  return button != nullptr;
}

bool BeatBridge::step(int by) const {
  if (wheel_ != nullptr) wheel_->step(by);
  return turns();
}

void BeatBridge::scroll(const QPointF& pixels, const QPointF& angle, bool byTicks) const {
  if (wheel_ == nullptr) return;
  if (byTicks) {
    wheel_->turn(angle.y());
  } else {
    wheel_->scroll(knowsPixels() && !pixels.isNull() ? pixels.y() : angle.y() / ANGLE_PER_POINT);
  }
}

QVariantList spanList(const std::vector<OnbSpan>& spans) {
  QVariantList list;
  for (const OnbSpan& span : spans) {
    list << QVariantMap{{QStringLiteral("text"), withFirmEnds(QString::fromStdString(span.text))},
                        {QStringLiteral("strong"), span.strong}};
  }
  return list;
}

}  // namespace dormel
