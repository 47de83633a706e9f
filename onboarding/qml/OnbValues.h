// Elements of a screen as its scene reads them: copies of what the logic says at that moment.
#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>
#include <vector>

#include "onboarding/OnbPill.h"
#include "onboarding/OnbText.h"

namespace dormel {

/// A text that comes in. Both texts are empty where a screen has no such element.
class OnbTextValue {
  Q_GADGET
  Q_PROPERTY(QString text MEMBER text)
  /// The same with its emphasis as styled text; empty where it has none.
  Q_PROPERTY(QString markup MEMBER markup)
  Q_PROPERTY(bool on MEMBER on)

 public:
  QString text;
  QString markup;
  bool on = false;

  [[nodiscard]] static OnbTextValue line(const OnbText& text);
  /// Reads the emphasis in it.
  [[nodiscard]] static OnbTextValue headline(const OnbText& text);
};

class OnbPillValue {
  Q_GADGET
  Q_PROPERTY(QString title MEMBER title)
  Q_PROPERTY(bool quiet MEMBER quiet)
  Q_PROPERTY(bool enabled MEMBER enabled)
  Q_PROPERTY(bool on MEMBER on)

 public:
  QString title;
  bool quiet = false;
  bool enabled = false;
  bool on = false;

  [[nodiscard]] static OnbPillValue of(const OnbPill& pill);
};

/// Objects with `text` and `strong`. Spaces at the ends of pieces do not break, so that they keep their width.
[[nodiscard]] QVariantList spanList(const std::vector<OnbSpan>& spans);

}  // namespace dormel
