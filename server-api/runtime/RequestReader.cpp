// SPDX-License-Identifier: GPL-3.0-or-later
#include "OrvaneAPI/RequestReader.h"

namespace orvane {

namespace {

/// "is not a text" becomes "Is not a text.".
std::string sentence(std::string text)
{
    if (!text.empty() && text.front() >= 'a' && text.front() <= 'z')
        text.front() = static_cast<char>(text.front() - 'a' + 'A');
    return text + ".";
}

} // namespace

std::optional<std::string> RequestReader::queryValue(std::string_view name)
{
    std::optional<std::string> found;
    for (const auto &[key, value] : m_parts.query) {
        if (key != name)
            continue;
        if (found)
            m_checks.refuse(name, "Must be given only once.");
        found = value;
    }
    return found;
}

void RequestReader::missing(std::string_view name)
{
    m_checks.refuse(name, "Is missing.");
}

void RequestReader::refuseBody(const JsonError &error)
{
    if (error.path.empty())
        m_message = "The body of the request " + error.message + ".";
    else
        m_checks.refuse(error.path, sentence(error.message));
}

RequestProblem RequestReader::takeProblem()
{
    RequestProblem problem;
    problem.message = m_message.empty() ? "Parts of the request were not accepted." : std::move(m_message);
    problem.fieldErrors = m_checks.takeErrors();
    return problem;
}

} // namespace orvane
