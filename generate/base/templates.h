#pragma once

#include <QHash>
#include <QString>

#include <optional>

/// Where the text of a template comes from. A vendor whose templates are stored in a form of their own derives from it.
class TemplateSource
{
public:
    TemplateSource() = default;
    virtual ~TemplateSource() = default;
    Q_DISABLE_COPY_MOVE(TemplateSource)

    /// The text of a template file; nothing if there is no such file or it cannot be read.
    virtual std::optional<QString> text(const QString &path) const = 0;
};

/// Templates that are plain text in UTF-8.
class PlainTemplateSource : public TemplateSource
{
public:
    std::optional<QString> text(const QString &path) const override;
};

/// What the placeholders of a template stand for: "__GEN_SDG_INCLUDES__" for the key "SDG_INCLUDES".
using TemplateValues = QHash<QString, QString>;

namespace Templates {

/// The template with the values in place of their placeholders, in one pass: what a value holds is not searched again.
/// Placeholders without a value stay. Nothing for a text that has no placeholder at all, which is no template.
std::optional<QString> fill(const QString &text, const TemplateValues &values);

/// A path under the stack's folder, which may be relative to the output folder.
QString pathInStack(const QString &stackPath, const QString &outputFolder, const QString &file);
/// A path in the data folder beside the program.
QString pathBesideProgram(const QString &file);

} // namespace Templates
