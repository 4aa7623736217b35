#pragma once

#include "ViewerSettings.h"

#include <QDialog>

class QDoubleSpinBox;
class QLineEdit;
class QPushButton;
class QSpinBox;

namespace viewer {

/// Edits a copy of the settings.
class SettingsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit SettingsDialog(const ViewerSettings& settings, QWidget* parent = nullptr);

    /// As chosen so far.
    ViewerSettings settings() const;

private:
    QWidget* colourBox();
    QWidget* labelBox();
    QPushButton* colourButton(QColor& colour, const QString& subject);
    void browseFont();
    void showColours();
    void showSettings();

    ViewerSettings m_settings; // the colours as chosen, the rest as it was
    QList<QPair<QPushButton*, QColor*>> m_colourButtons;
    QLineEdit* m_fontPath = nullptr;
    QSpinBox* m_normalFontSize = nullptr;
    QSpinBox* m_flagFontSize = nullptr;
    QDoubleSpinBox* m_smallestPlane = nullptr;
};

} // namespace viewer
