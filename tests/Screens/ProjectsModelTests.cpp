// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModel/AppModel.h"
#include "Screens/Projects/ProjectsModel.h"
#include "Tracker/CatalogEditor.h"
#include "support/Await.h"
#include "support/CommandRun.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using testing::await;
using testing::eventually;

ProjectFields fieldsOf(const char *name)
{
    ProjectFields fields;
    fields.name = name;
    fields.color = "#3B77D0";
    return fields;
}

/// The section of projects, looked at, over the real server.
class ProjectsModelTest : public ::testing::Test {
protected:
    ProjectsModelTest()
        : m_app({.folder = m_installation.folder(), .serverProgram = builtProgram("orvane-server")})
        , m_projects(m_app)
    {
        m_projects.setShown(true);
        m_app.open();
    }
    ~ProjectsModelTest() override { await(m_app.close()); }

    void SetUp() override
    {
        ASSERT_TRUE(eventually([this] {
            return m_app.tracker() != nullptr && m_app.tracker()->state() == LoadState::loaded;
        })) << m_app.problem().toStdString();
    }

    QStringList listed() const
    {
        QStringList names;
        for (const ProjectRow &row : m_projects.rows()->rows())
            names << row.name;
        return names;
    }
    bool lists(const QStringList &names) const
    {
        return eventually([&] { return listed() == names; });
    }
    const ProjectRow *row(const char *name)
    {
        for (const ProjectRow &each : m_projects.rows()->rows()) {
            if (each.name == QLatin1String(name))
                return &each;
        }
        return nullptr;
    }
    /// Made in the editor, as a person does.
    void make(const char *name)
    {
        m_projects.beginNew();
        ProjectEditor &editor = *m_projects.editor();
        editor.setProperty("name", QString::fromUtf8(name));
        editor.save();
        ASSERT_TRUE(eventually([&] { return !editor.isOpen() && row(name) != nullptr; }));
    }
    void open(const char *name) { m_projects.editor()->open(QString::fromStdString(row(name)->id)); }
    /// What the user's last change did is no more.
    bool undoes(const char *what)
    {
        if (!eventually([&] { return m_app.undoText().startsWith(QLatin1String(what)); }))
            return false;
        m_app.undo();
        return eventually([this] { return m_app.notices()->text().startsWith(QLatin1String("Undone")); });
    }

    TestInstallation m_installation;
    AppModel m_app;
    mutable ProjectsModel m_projects;
};

TEST_F(ProjectsModelTest, MakesRenamesAndTakesTheRenamingBack)
{
    EXPECT_FALSE(m_projects.emptyText().isEmpty());
    make("Website");
    EXPECT_TRUE(lists({QStringLiteral("No client"), QStringLiteral("Website")}));
    EXPECT_TRUE(m_projects.emptyText().isEmpty());

    open("Website");
    ProjectEditor &editor = *m_projects.editor();
    editor.setProperty("name", QStringLiteral("Site"));
    editor.setProperty("rate", QStringLiteral("80,5"));
    editor.setProperty("estimate", QStringLiteral("120h"));
    editor.save();
    ASSERT_TRUE(eventually([&] { return row("Site") != nullptr; }));
    EXPECT_EQ(row("Site")->estimate, QStringLiteral("120h"));
    EXPECT_TRUE(row("Site")->rate.contains(QLatin1String("80.50")));
    ASSERT_TRUE(undoes("Renamed")) << m_app.notices()->text().toStdString();
    EXPECT_TRUE(lists({QStringLiteral("No client"), QStringLiteral("Website")}));
    EXPECT_EQ(row("Website")->estimate, QStringLiteral("–"));
}

TEST_F(ProjectsModelTest, KeepsWhatIsTypedWhereAFieldCannotBeRead)
{
    m_projects.beginNew();
    ProjectEditor &editor = *m_projects.editor();
    editor.save();
    EXPECT_EQ(editor.wrongField(), ProjectEditor::Field::Name);
    editor.setProperty("name", QStringLiteral("Website"));
    editor.setProperty("rate", QStringLiteral("a lot"));
    editor.save();
    EXPECT_EQ(editor.wrongField(), ProjectEditor::Field::Rate);
    editor.setProperty("rate", QString());
    // Forty minutes or forty hours?
    editor.setProperty("estimate", QStringLiteral("40"));
    editor.save();
    EXPECT_EQ(editor.wrongField(), ProjectEditor::Field::Estimate);
    EXPECT_TRUE(editor.isNew());
    EXPECT_EQ(editor.property("name").toString(), QStringLiteral("Website"));
    EXPECT_TRUE(m_app.tracker()->catalog().projects().empty());
}

TEST_F(ProjectsModelTest, PutsProjectsBelowTheirClientsAndFindsThem)
{
    m_projects.setKind(ProjectsModel::Clients);
    m_projects.beginNew();
    m_projects.clients()->setProperty("text", QStringLiteral("Kestrel"));
    m_projects.clients()->save();
    ASSERT_TRUE(eventually([&] { return m_projects.clients()->count() == 1; }));
    m_projects.setKind(ProjectsModel::Projects);
    make("Admin");
    make("Atlas API");
    open("Atlas API");
    m_projects.editor()->chooseClient(0);
    EXPECT_EQ(m_projects.editor()->client(), QStringLiteral("Kestrel"));
    m_projects.editor()->save();
    const QStringList all{QStringLiteral("Kestrel"), QStringLiteral("Atlas API"), QStringLiteral("No client"),
                          QStringLiteral("Admin")};
    ASSERT_TRUE(lists(all)) << listed().join(QLatin1Char('|')).toStdString();

    m_projects.setQuery(QStringLiteral("kestr"));
    EXPECT_EQ(listed(), (QStringList{QStringLiteral("Kestrel"), QStringLiteral("Atlas API")}));
    m_projects.setQuery(QStringLiteral("ADMIN"));
    EXPECT_EQ(listed(), (QStringList{QStringLiteral("No client"), QStringLiteral("Admin")}));
    m_projects.setQuery(QStringLiteral("nowhere"));
    EXPECT_TRUE(m_projects.emptyText().contains(QLatin1String("nowhere")));
    m_projects.setQuery({});

    // The client goes, its project stays.
    m_projects.setKind(ProjectsModel::Clients);
    CatalogRemoval &removal = *m_projects.removal();
    removal.ask(CatalogRemoval::Client, m_projects.clients()->index(0).data(NameList::itemIdRole).toString());
    EXPECT_TRUE(removal.effect().contains(QLatin1String("1 project")));
    removal.remove();
    m_projects.setKind(ProjectsModel::Projects);
    EXPECT_TRUE(lists({QStringLiteral("No client"), QStringLiteral("Admin"), QStringLiteral("Atlas API")}));
}

TEST_F(ProjectsModelTest, ArchivesOutOfSightAndBack)
{
    make("Old");
    make("New");
    open("Old");
    m_projects.editor()->archive();
    ASSERT_TRUE(lists({QStringLiteral("No client"), QStringLiteral("New"), QStringLiteral("Archived")}));
    EXPECT_TRUE(eventually([&] { return m_app.notices()->action() == Notices::Action::Undo; }));
    m_projects.setShowsArchived(true);
    EXPECT_NE(row("Old"), nullptr);
    ASSERT_TRUE(undoes("Archived"));
    EXPECT_TRUE(lists({QStringLiteral("No client"), QStringLiteral("New"), QStringLiteral("Old")}));
}

TEST_F(ProjectsModelTest, KeepsTasksAndSaysWhatHangsOnThem)
{
    make("Atlas");
    open("Atlas");
    ProjectEditor &editor = *m_projects.editor();
    editor.setProperty("newTask", QStringLiteral("Backend"));
    editor.addTask();
    ASSERT_TRUE(eventually([&] { return editor.tasks()->rowCount() == 1; }));
    EXPECT_TRUE(eventually([&] { return editor.property("newTask").toString().isEmpty(); }));
    EXPECT_EQ(editor.tasks()->summary(), QStringLiteral("1 open"));
    const std::string task = editor.tasks()->rows().front().id;
    const std::string project = editor.projectId().toStdString();

    EntryRequest request;
    request.details = {.description = "Work",
                       .projectId = project,
                       .taskId = task,
                       .tagIds = {},
                       .isBillable = false,
                       .shares = {}};
    const UserTime &time = m_app.tracker()->time();
    request.start = time.startOfDay(time.today());
    request.stop = request.start + std::chrono::minutes{90};
    ASSERT_EQ(await(m_app.tracker()->create(request)).outcome, SaveOutcome::saved);
    ASSERT_TRUE(eventually([&] { return editor.tasks()->rows().front().week == QStringLiteral("1h 30m"); }));
    EXPECT_EQ(row("Atlas")->week, QStringLiteral("1h 30m"));
    EXPECT_EQ(row("Atlas")->share, 1);

    editor.setTaskDone(QString::fromStdString(task), true);
    ASSERT_TRUE(eventually([&] { return editor.tasks()->rows().front().isDone; }));
    EXPECT_EQ(editor.tasks()->summary(), QStringLiteral("0 open, 1 done"));
    ASSERT_TRUE(undoes("Closed"));
    EXPECT_FALSE(editor.tasks()->rows().front().isDone);

    CatalogRemoval &removal = *m_projects.removal();
    removal.ask(CatalogRemoval::Project, QString::fromStdString(project));
    // Nothing is deleted before it is known what that does.
    removal.remove();
    ASSERT_TRUE(eventually([&] { return removal.isKnown(); }));
    EXPECT_TRUE(removal.effect().contains(QLatin1String("1h 30m"))) << removal.effect().toStdString();
    EXPECT_NE(m_app.tracker()->catalog().project(project), nullptr);
    removal.remove();
    ASSERT_TRUE(eventually([&] { return m_app.tracker()->catalog().project(project) == nullptr; }));
    EXPECT_FALSE(editor.isOpen());
    EXPECT_TRUE(eventually([&] { return removal.itemId().isEmpty(); }));
}

TEST_F(ProjectsModelTest, LeavesTheEditorsRowAloneWhenOthersChange)
{
    make("B");
    open("B");
    int resets = 0;
    int removals = 0;
    QObject::connect(m_projects.rows(), &QAbstractItemModel::modelReset, m_projects.rows(),
                     [&] { ++resets; });
    QObject::connect(m_projects.rows(), &QAbstractItemModel::rowsRemoved, m_projects.rows(),
                     [&] { ++removals; });
    CatalogEditor others(m_app.account()->client(), *m_app.tracker());
    ASSERT_TRUE(await(others.createProject(fieldsOf("A"))));
    ASSERT_TRUE(await(others.createProject(fieldsOf("C"))));
    EXPECT_TRUE(
        lists({QStringLiteral("No client"), QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")}));
    EXPECT_EQ(resets + removals, 0);
    EXPECT_EQ(m_projects.editor()->property("name").toString(), QStringLiteral("B"));
}

} // namespace
} // namespace orvane
