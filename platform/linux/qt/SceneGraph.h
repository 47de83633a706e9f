// What draws Qt Quick scenes in this process: Qt's software scene graph, or the graphics driver. Chosen once, on the
// main thread, before the first scene's window is made.
#pragma once

#include <QString>

namespace dormel::SceneGraph {

/// The software one: no driver is loaded, so none can take anything down. There are no shader effects in it.
void useSoftware();

/// The driver, where a real one answers; else the software one, also where the driver would only be another piece of
/// software that does the same with more effort. Needs the application object.
///
/// Qt's own variables force either, for tests and for users with a broken driver: QT_QUICK_BACKEND=software, or
/// QSG_RHI_BACKEND=opengl for any driver that answers.
void chooseForWindows();

/// A driver that answered and then could not draw a window after all: says so in one line on standard error, and starts
/// this program again in this process, in software.
void startAgainInSoftware(const QString& reason);

}  // namespace dormel::SceneGraph
