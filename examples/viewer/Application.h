#pragma once

class QApplication;

namespace viewer {

/// What must be set before a QApplication is made.
void prepareApplication();

/// Name, version and number format; call it once the QApplication stands.
void describeApplication();

/// The whole program.
/// @return the exit status
int runApplication(int argc, char** argv);

} // namespace viewer
