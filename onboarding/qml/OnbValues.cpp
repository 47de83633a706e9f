#include "onboarding/qml/OnbValues.h"

#include <QVariantMap>
#include <algorithm>

namespace dormel {
namespace {

constexpr QChar NO_BREAK_SPACE(0xa0);

QString withFirmEnds(QString text) {
  if (text.startsWith(QLatin1Char(' '))) text[0] = NO_BREAK_SPACE;
  if (text.endsWith(QLatin1Char(' '))) text[text.size() - 1] = NO_BREAK_SPACE;
  return text;
}

}  // namespace

OnbTextValue OnbTextValue::line(const OnbText& text) {
  OnbTextValue value;
  value.text = QString::fromStdString(text.text);
  value.on = text.reveal.on();
  return value;
}

OnbTextValue OnbTextValue::headline(const OnbText& text) {
  const std::vector<OnbSpan> spans = headlineSpans(text.text);
  OnbTextValue value = line(text);
  value.text = QString::fromStdString(plainText(spans));
  if (std::none_of(spans.begin(), spans.end(), [](const OnbSpan& span) { return span.strong; })) return value;
  for (const OnbSpan& span : spans) {
    const QString piece = QString::fromStdString(span.text).toHtmlEscaped();
    value.markup += span.strong ? QStringLiteral("<i>%1</i>").arg(piece) : piece;
  }
  return value;
}

OnbPillValue OnbPillValue::of(const OnbPill& pill) {
  OnbPillValue value;
  value.title = QString::fromStdString(pill.title());
  value.quiet = pill.quiet();
  value.enabled = pill.enabled();
  value.on = pill.reveal().on();
  return value;
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
