#pragma once

#include <QColor>
#include <QLocale>
#include <QString>

#include <array>

namespace viewer {

/// What a user may choose about the looks of features; kept from session to session.
struct ViewerSettings
{
    /// What has colours of its own. Labels of all kinds share theirs.
    enum Subject
    {
        Dots,
        FlagDots,
        Lines,
        Planes,
        Labels,
        SubjectCount
    };

    struct StateColours
    {
        QColor highlighted{0, 165, 60};
        QColor selected{220, 30, 30};
    };

    std::array<StateColours, SubjectCount> colours;
    QString fontPath; ///< of labels; empty: one that suits the language
    int normalFontSize = 14;
    int flagFontSize = 16;
    double smallestPlane = 0.01; ///< planes lower than this are refused, scene units
    QLocale::Language language = QLocale::English;

    static ViewerSettings load();
    void save() const;

    /// Hands everything to the configuration of the library and installs the language. What is built
    /// already keeps its looks.
    /// @param pixelRatio device pixels per pixel of the platform: the library sizes labels in device pixels
    void apply(double pixelRatio) const;
};

QString subjectName(ViewerSettings::Subject subject);

} // namespace viewer
