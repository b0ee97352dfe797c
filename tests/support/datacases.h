#pragma once

#include "support/printing.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace TestSupport {

/// A text as a part of a test's name.
std::string nameOf(const QString &text);

/// A case of a file in tests/data: the line of its title and those behind it, up to the next title.
struct TextCase
{
    QString path;
    QStringList lines;

    std::string name() const;
};

/// The cases of a folder's .txt files. A title begins with one of the marks.
QList<TextCase> textCases(const QString &folder, const QStringList &marks);
/// Holds what was made of a case against its lines. NCX_ACCEPT=1 in the environment writes it into the file.
void expectCase(const TextCase &textCase, const QStringList &made);

/// A case that is a file or a folder.
struct FileCase
{
    QString path;

    /// Of the file without its ending; of a folder with the one around it.
    QString baseName() const;
    std::string name() const { return nameOf(baseName()); }
};

/// The files of a folder in tests/data with one of the endings.
QList<FileCase> fileCases(const QString &folder, const QStringList &endings);
/// The folders of tests/data/golden and examples that hold a project each.
QList<FileCase> projectCases();

template <class Case>
void PrintTo(const Case &each, std::ostream *out) requires requires
{
    each.name();
}
{
    *out << each.name();
}

/// Makes `TEST_P(Suite, ...)` run for each case, by the name of that.
inline constexpr auto caseName = [](const auto &info) { return info.param.name(); };

} // namespace TestSupport
