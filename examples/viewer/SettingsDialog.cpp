#include "SettingsDialog.h"

#include <QColorDialog>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace viewer {

namespace {

constexpr int kSmallestFontSize = 6;
constexpr int kLargestFontSize = 72;
constexpr QSize kSwatchSize(48, 16);

QSpinBox* fontSizeBox()
{
    auto* const box = new QSpinBox;
    box->setRange(kSmallestFontSize, kLargestFontSize);
    box->setSuffix(SettingsDialog::tr(" pt"));
    return box;
}

} // namespace

SettingsDialog::SettingsDialog(const ViewerSettings& settings, QWidget* parent) : QDialog(parent), m_settings(settings)
{
    setWindowTitle(tr("Settings"));
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(colourBox());
    layout->addWidget(labelBox());

    auto* const note = new QLabel(tr("New features follow these settings; so do others once they change."));
    note->setEnabled(false);
    layout->addWidget(note);

    auto* const buttons =
        new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::RestoreDefaults);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(buttons->button(QDialogButtonBox::RestoreDefaults), &QPushButton::clicked, this, [this] {
        const QLocale::Language language = m_settings.language; // is chosen in the menu, not here
        m_settings = ViewerSettings();
        m_settings.language = language;
        showSettings();
    });
    layout->addWidget(buttons);
    showSettings();
}

ViewerSettings SettingsDialog::settings() const
{
    ViewerSettings settings = m_settings;
    settings.fontPath = m_fontPath->text();
    settings.normalFontSize = m_normalFontSize->value();
    settings.flagFontSize = m_flagFontSize->value();
    settings.smallestPlane = m_smallestPlane->value();
    return settings;
}

QWidget* SettingsDialog::colourBox()
{
    auto* const box = new QGroupBox(tr("Colours"));
    auto* const grid = new QGridLayout(box);
    grid->addWidget(new QLabel(tr("under the cursor")), 0, 1);
    grid->addWidget(new QLabel(tr("selected")), 0, 2);
    for (int row = 0; row < ViewerSettings::SubjectCount; ++row) {
        const QString subject = subjectName(ViewerSettings::Subject(row));
        ViewerSettings::StateColours& colours = m_settings.colours[std::size_t(row)];
        grid->addWidget(new QLabel(subject), row + 1, 0);
        grid->addWidget(colourButton(colours.highlighted, subject), row + 1, 1);
        grid->addWidget(colourButton(colours.selected, subject), row + 1, 2);
    }
    return box;
}

QWidget* SettingsDialog::labelBox()
{
    auto* const box = new QGroupBox(tr("Labels and limits"));
    auto* const form = new QFormLayout(box);
    m_fontPath = new QLineEdit;
    m_fontPath->setPlaceholderText(tr("a font that suits the language"));
    m_fontPath->setMinimumWidth(260);
    auto* const browse = new QPushButton(tr("Browse..."));
    connect(browse, &QPushButton::clicked, this, &SettingsDialog::browseFont);
    auto* const fontRow = new QHBoxLayout;
    fontRow->addWidget(m_fontPath);
    fontRow->addWidget(browse);
    form->addRow(tr("Font file"), fontRow);
    form->addRow(tr("Font size"), m_normalFontSize = fontSizeBox());
    form->addRow(tr("Font size of clicked points"), m_flagFontSize = fontSizeBox());
    m_smallestPlane = new QDoubleSpinBox;
    m_smallestPlane->setDecimals(4);
    m_smallestPlane->setRange(0.0, 1e6);
    m_smallestPlane->setToolTip(tr("Three points closer than this to one line make no plane (in units of the mesh)"));
    form->addRow(tr("Smallest plane"), m_smallestPlane);
    return box;
}

QPushButton* SettingsDialog::colourButton(QColor& colour, const QString& subject)
{
    auto* const button = new QPushButton;
    button->setIconSize(kSwatchSize);
    button->setAccessibleName(subject);
    m_colourButtons.append({button, &colour});
    connect(button, &QPushButton::clicked, this, [this, &colour, subject] {
        const QColor chosen = QColorDialog::getColor(colour, this, subject);
        if (chosen.isValid()) colour = chosen;
        showColours();
    });
    return button;
}

void SettingsDialog::browseFont()
{
    const QString path = QFileDialog::getOpenFileName(this, tr("Font File"), m_fontPath->text(),
                                                      tr("Fonts (*.ttf *.otf *.ttc);;All files (*)"));
    if (!path.isEmpty()) m_fontPath->setText(path);
}

void SettingsDialog::showColours()
{
    for (const auto& [button, colour] : m_colourButtons) {
        QPixmap swatch(kSwatchSize);
        swatch.fill(*colour);
        button->setIcon(swatch);
    }
}

void SettingsDialog::showSettings()
{
    showColours();
    m_fontPath->setText(m_settings.fontPath);
    m_normalFontSize->setValue(m_settings.normalFontSize);
    m_flagFontSize->setValue(m_settings.flagFontSize);
    m_smallestPlane->setValue(m_settings.smallestPlane);
}

} // namespace viewer
