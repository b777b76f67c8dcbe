// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModel/WindowChoices.h"

#include "Support/JsonImpl.h"

#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QSaveFile>
#include <array>

namespace orvane {

namespace {

constexpr qint64 largestChoices = 64 * 1024;
constexpr std::array<std::string_view, 3> schemeNames{"system", "light", "dark"};

struct ChoicesDocument {
    std::optional<std::string> scheme;
    std::optional<bool> keepsStill;
    std::optional<std::map<std::string, std::string>> keys;
};

} // namespace

template <>
struct JsonFields<ChoicesDocument> {
    static constexpr auto list = JsonFieldList{jsonField<"scheme">(&ChoicesDocument::scheme),
                                               jsonField<"keepsStill">(&ChoicesDocument::keepsStill),
                                               jsonField<"keys">(&ChoicesDocument::keys)};
};

namespace {

WindowChoices::Values choicesIn(const std::string &path)
{
    WindowChoices::Values values;
    QFile file(QString::fromStdString(path));
    // Not a pipe, which would hold the start up.
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly))
        return values;
    const QByteArray bytes = file.read(largestChoices + 1);
    if (bytes.size() > largestChoices)
        return values;
    const auto document =
        decodeJson<ChoicesDocument>({bytes.constData(), static_cast<std::size_t>(bytes.size())});
    if (!document)
        return values;
    const auto name = std::ranges::find(schemeNames, document->scheme.value_or(""));
    if (name != schemeNames.end())
        values.scheme = static_cast<WindowChoices::Scheme>(name - schemeNames.begin());
    values.keepsStill = document->keepsStill.value_or(false);
    values.keys = document->keys.value_or(std::map<std::string, std::string>());
    return values;
}

/// Answers what is wrong, or nothing.
QString choicesWritten(const std::string &path, const WindowChoices::Values &values)
{
    const std::string text =
        encodeJson(ChoicesDocument{std::string(schemeNames[static_cast<std::size_t>(values.scheme)]),
                                   values.keepsStill, values.keys}) +
        "\n";
    QSaveFile file(QString::fromStdString(path));
    const bool isWritten = file.open(QIODevice::WriteOnly) &&
                           file.setPermissions(QFile::ReadOwner | QFile::WriteOwner) &&
                           file.write(text.data(), static_cast<qint64>(text.size())) >= 0 && file.commit();
    return isWritten ? QString() : file.errorString();
}

} // namespace

/// Puts choices back if they are still as the step made them.
class ChoicesStep final : public UndoableChange {
public:
    ChoicesStep(WindowChoices &choices, WindowChoices::Values before, std::string sentence)
        : m_choices(&choices)
        , m_before(std::move(before))
        , m_after(choices.values())
        , m_sentence(std::move(sentence))
    {
    }

    std::string sentence() const override { return m_sentence; }
    Task<Outcome> undo() override { return moved(m_choices, m_after, m_before); }
    Task<Outcome> redo() override { return moved(m_choices, m_before, m_after); }

private:
    static Task<Outcome> moved(QPointer<WindowChoices> choices, WindowChoices::Values from,
                               WindowChoices::Values to)
    {
        if (!choices || choices->values() != from)
            co_return Outcome{Ending::changedSince,
                              "That cannot be undone: the settings were changed since then."};
        choices->take(std::move(to));
        co_return Outcome{};
    }

    QPointer<WindowChoices> m_choices;
    WindowChoices::Values m_before;
    WindowChoices::Values m_after;
    std::string m_sentence;
};

WindowChoices::WindowChoices(std::string path) : m_path(std::move(path)), m_values(choicesIn(m_path)) {}

void WindowChoices::setScheme(Scheme scheme)
{
    Values values = m_values;
    values.scheme = scheme;
    set(std::move(values), "Changed the appearance");
}

void WindowChoices::setKeepsStill(bool keepsStill)
{
    Values values = m_values;
    values.keepsStill = keepsStill;
    set(std::move(values), "Changed the appearance");
}

void WindowChoices::set(Values values, std::string sentence)
{
    if (values == m_values)
        return;
    Values before = m_values;
    take(std::move(values));
    Q_EMIT stepMade(std::make_shared<ChoicesStep>(*this, std::move(before), std::move(sentence)));
}

void WindowChoices::take(Values values)
{
    m_values = std::move(values);
    const QString problem = choicesWritten(m_path, m_values);
    m_problem = problem.isEmpty() ? QString() : tr("This choice could not be saved: %1").arg(problem);
    Q_EMIT changed();
}

} // namespace orvane
