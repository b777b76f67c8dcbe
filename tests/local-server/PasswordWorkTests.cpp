// SPDX-License-Identifier: GPL-3.0-or-later
// What happens while a password's hash is being made.
#include "ServerFixture.h"

#include <QTemporaryDir>
#include <algorithm>
#include <deque>

namespace orvane::server {

using namespace operations;

class PasswordWork : public ServerFixture {
protected:
    struct Job {
        std::function<void()> work;
        std::function<void()> done;
    };
    /// Works in place, but for the jobs, which the test does when it likes.
    class Jobs : public InPlaceExecutor {
    public:
        Jobs(PasswordWork &test, Database &database) : InPlaceExecutor(database), m_test(test) {}
        bool compute(std::function<void()> work, std::function<void()> done) override
        {
            if (m_test.jobs.size() >= m_test.room)
                return false;
            m_test.jobs.push_back({std::move(work), std::move(done)});
            return true;
        }

    private:
        PasswordWork &m_test;
    };

    PasswordWork()
    {
        openServer({}, {}, folder.filePath(QStringLiteral("server.sqlite")).toStdString());
        database = Database::connect(databasePath).value();
        executor = std::make_unique<Jobs>(*this, *database);
    }

    /// Begins a request; where its answer will be.
    std::shared_ptr<HttpResponse> begin(HttpRequest request, const std::string &token = {})
    {
        request.headers.set("Host", "127.0.0.1:0");
        if (!token.empty())
            request.headers.set("Authorization", "Bearer " + token);
        auto answer = std::make_shared<HttpResponse>();
        server->serve(request, peer, *executor, [answer](Served served) {
            EXPECT_EQ(answer->status, 0) << "answered twice";
            *answer = std::move(served.response);
        });
        return answer;
    }
    std::shared_ptr<HttpResponse> beginLogin(const std::string &guess)
    {
        LoginRequest body;
        body.email = "grace@example.org";
        body.password = guess;
        return begin(Login::request({body}));
    }
    void workThrough()
    {
        while (!jobs.empty()) {
            const Job job = std::move(jobs.front());
            jobs.pop_front();
            job.work();
            job.done();
        }
    }

    const std::string password = "correct horse battery";
    QTemporaryDir folder;
    std::unique_ptr<Database> database;
    std::unique_ptr<Jobs> executor;
    std::deque<Job> jobs;
    std::size_t room = 64;
};

TEST_F(PasswordWork, OthersAreAnsweredMeanwhile)
{
    const std::string token = registerAccount().accessToken;
    std::vector<std::shared_ptr<HttpResponse>> logins;
    for (int i = 0; i < 8; ++i)
        logins.push_back(beginLogin(password));
    const auto registering = begin(Register::request({registration("alan@example.org")}));
    EXPECT_EQ(jobs.size(), 9U);
    EXPECT_EQ(begin(GetMe::request({}), token)->status, 200);
    EXPECT_EQ(registering->status, 0);
    workThrough();
    for (const auto &login : logins)
        EXPECT_EQ(login->status, 200) << "right passwords do not slow each other";
    EXPECT_EQ(registering->status, 201);
}

TEST_F(PasswordWork, GuessesMadeAtOnceAreNoMoreThanGuessesInARow)
{
    registerAccount();
    std::vector<std::shared_ptr<HttpResponse>> guesses;
    for (int i = 0; i < 8; ++i)
        guesses.push_back(beginLogin("guess"));
    const auto right = beginLogin(password);
    workThrough();
    const auto answered = std::ranges::count(guesses, 401, [](const auto &guess) { return guess->status; });
    EXPECT_EQ(answered, 5);
    EXPECT_EQ(right->status, 429) << "says nothing of the password";
}

TEST_F(PasswordWork, TheWorldMayHaveChangedByThen)
{
    accessToken = registerAccount().accessToken;
    const auto early = beginLogin(password);
    const auto changing = begin(ChangePassword::request({{password, "new password"}}), accessToken);
    const auto first = begin(Register::request({registration("alan@example.org")}));
    const auto second = begin(Register::request({registration("alan@example.org")}));
    for (const Job &job : jobs)
        job.work();
    // The password is changed before the login decides, which was checked against the old one.
    jobs[1].done();
    EXPECT_EQ(changing->status, 204);
    jobs[0].done();
    EXPECT_EQ(early->status, 0) << "checked once more";
    jobs[2].done();
    jobs[3].done();
    EXPECT_EQ(first->status, 201);
    EXPECT_EQ(second->status, 409);
    jobs.erase(jobs.begin(), jobs.begin() + 4);
    workThrough();
    EXPECT_EQ(early->status, 401);

    const auto late = begin(ChangePassword::request({{"new password", "third password"}}), accessToken);
    const auto signedIn = beginLogin("new password");
    jobs.back().work();
    jobs.back().done();
    jobs.pop_back();
    ASSERT_EQ(signedIn->status, 200);
    const auto other = decodeJson<AuthTokensResponse>(signedIn->body)->accessToken;
    ASSERT_EQ(begin(RevokeOtherSessions::request({}), other)->status, 204);
    workThrough();
    EXPECT_EQ(late->status, 401) << "whose session ended meanwhile changes nothing";
}

TEST_F(PasswordWork, TooMuchOfItIsRefusedAtOnce)
{
    room = 1;
    registerAccount();
    const auto taken = beginLogin(password);
    const auto refused = beginLogin(password);
    EXPECT_EQ(refused->status, 503);
    EXPECT_EQ(refused->headers.find("Retry-After"), "1");
    workThrough();
    EXPECT_EQ(taken->status, 200);
}

} // namespace orvane::server
