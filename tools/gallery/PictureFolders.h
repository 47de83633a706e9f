// Where the gallery puts its pictures.
#pragma once

#include <QDir>
#include <QImage>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>

namespace dormel {

class PictureFolders {
 public:
  /// What the documentation shows goes into `docs` as well, if there is one.
  PictureFolders(const QDir& folder, std::string language, const std::optional<QDir>& docs)
      : folder_(folder), language_(std::move(language)), docs_(docs) {}

  [[nodiscard]] const std::string& language() const { return language_; }
  /// Whether all could be written.
  [[nodiscard]] bool isWhole() const { return isWhole_; }

  void save(const QString& name, const QImage& picture) { write(folder_, name, picture); }
  void keep(const QString& name, const QImage& picture) {
    if (docs_) write(*docs_, name, picture);
  }

 private:
  void write(const QDir& folder, const QString& name, const QImage& picture) {
    const QString file = folder.filePath(name + QStringLiteral(".png"));
    const bool isWritten = picture.save(file, "PNG", 0);  // packed as tightly as it goes
    std::fprintf(isWritten ? stdout : stderr, "%s%s\n", isWritten ? "" : "cannot write ", qPrintable(file));
    isWhole_ = isWhole_ && isWritten;
  }

  QDir folder_;
  std::string language_;
  std::optional<QDir> docs_;
  bool isWhole_ = true;
};

/// The first run: its components in all their states, all its screens, early and settled, at both scales and on
/// strangers' screens, and a sheet of them, which the documentation shows.
void drawFirstRun(PictureFolders& folders);

}  // namespace dormel
