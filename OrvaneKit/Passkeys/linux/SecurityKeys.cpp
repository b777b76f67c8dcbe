// SPDX-License-Identifier: GPL-3.0-or-later
#include "Passkeys/linux/SecurityKeys.h"

#include "Support/AsyncHop.h"

#include <QCborMap>
#include <QCborValue>
#include <QCryptographicHash>
#include <fido.h>
#include <mutex>

namespace orvane {

namespace {

constexpr std::chrono::milliseconds cancelInterval{100};
/// Longer than any key waits for its user by itself.
constexpr int answerPatience = 120'000; // milliseconds
constexpr std::size_t mostKeys = 16;

using Assertion = std::unique_ptr<fido_assert_t, decltype([](fido_assert_t *it) { fido_assert_free(&it); })>;
using Credential = std::unique_ptr<fido_cred_t, decltype([](fido_cred_t *it) { fido_cred_free(&it); })>;

std::string bytes(const unsigned char *data, std::size_t size)
{
    return {reinterpret_cast<const char *>(data), size};
}

const unsigned char *raw(const std::string &text)
{
    return reinterpret_cast<const unsigned char *>(text.data());
}

std::string sha256(const std::string &text)
{
    return QCryptographicHash::hash(QByteArray::fromStdString(text), QCryptographicHash::Sha256)
        .toStdString();
}

PasskeyError errorOf(int code)
{
    switch (code) {
    case FIDO_ERR_KEEPALIVE_CANCEL:
    case FIDO_ERR_OPERATION_DENIED:
    case FIDO_ERR_USER_ACTION_TIMEOUT:
    case FIDO_ERR_ACTION_TIMEOUT:
    case FIDO_ERR_TIMEOUT:
        return PasskeyError::cancelled;
    default:
        return PasskeyError::unavailable;
    }
}

/// The first code that is none of success, of calls made in this order.
template <class... Codes>
int firstFault(Codes... codes)
{
    int fault = FIDO_OK;
    ((fault = fault == FIDO_OK ? codes : fault), ...);
    return fault;
}

/// With a PIN the key is told nothing of its sensor.
fido_opt_t sensor(const char *pin)
{
    return pin == nullptr ? FIDO_OPT_TRUE : FIDO_OPT_OMIT;
}

int assertWith(fido_dev *key, const char *pin, const PasskeyAssertionOptions &options,
               const std::string &dataHash, PasskeyAssertion &answer)
{
    const Assertion assertion(fido_assert_new());
    fido_assert_t *it = assertion.get();
    int fault = firstFault(fido_assert_set_rp(it, options.rpId.c_str()),
                           fido_assert_set_clientdata_hash(it, raw(dataHash), dataHash.size()),
                           fido_assert_set_uv(it, sensor(pin)));
    if (fault == FIDO_OK)
        fault = fido_dev_get_assert(key, it, pin);
    if (fault == FIDO_OK && fido_assert_count(it) == 0)
        fault = FIDO_ERR_NO_CREDENTIALS;
    if (fault != FIDO_OK)
        return fault;
    // Of several accounts the one that got its passkey last comes first.
    answer.credentialId = bytes(fido_assert_id_ptr(it, 0), fido_assert_id_len(it, 0));
    const std::string wrapped = bytes(fido_assert_authdata_ptr(it, 0), fido_assert_authdata_len(it, 0));
    answer.authenticatorData =
        QCborValue::fromCbor(QByteArray::fromStdString(wrapped)).toByteArray().toStdString();
    answer.signature = bytes(fido_assert_sig_ptr(it, 0), fido_assert_sig_len(it, 0));
    answer.userHandle = bytes(fido_assert_user_id_ptr(it, 0), fido_assert_user_id_len(it, 0));
    return FIDO_OK;
}

/// What the key says about its maker is of no use to the server and could tell its user apart.
std::string withoutMaker(const std::string &authenticatorData)
{
    return QCborValue(QCborMap{{QStringLiteral("fmt"), QStringLiteral("none")},
                               {QStringLiteral("attStmt"), QCborMap()},
                               {QStringLiteral("authData"), QByteArray::fromStdString(authenticatorData)}})
        .toCbor()
        .toStdString();
}

int prepare(fido_cred_t *it, const char *pin, const PasskeyRegistrationOptions &options,
            const std::string &dataHash)
{
    const auto &user = options.user;
    int fault = firstFault(
        fido_cred_set_type(it, COSE_ES256),
        fido_cred_set_rp(it, options.rp.id.c_str(), options.rp.name.c_str()),
        fido_cred_set_user(it, raw(user.id), user.id.size(), user.name.c_str(), user.name.c_str(), nullptr),
        fido_cred_set_clientdata_hash(it, raw(dataHash), dataHash.size()),
        fido_cred_set_rk(it, FIDO_OPT_TRUE), fido_cred_set_uv(it, sensor(pin)));
    for (const std::string &id : options.excludedIds)
        fault = firstFault(fault, fido_cred_exclude(it, raw(id), id.size()));
    return fault;
}

int registerWith(fido_dev *key, const char *pin, const PasskeyRegistrationOptions &options,
                 const std::string &dataHash, PasskeyAttestation &answer)
{
    const Credential credential(fido_cred_new());
    fido_cred_t *it = credential.get();
    int fault = prepare(it, pin, options, dataHash);
    if (fault == FIDO_OK)
        fault = fido_dev_make_cred(key, it, pin);
    if (fault != FIDO_OK)
        return fault;
    answer.credentialId = bytes(fido_cred_id_ptr(it), fido_cred_id_len(it));
    answer.attestationObject =
        withoutMaker(bytes(fido_cred_authdata_raw_ptr(it), fido_cred_authdata_raw_len(it)));
    answer.transports = {"usb"};
    return FIDO_OK;
}

} // namespace

void SecurityKeyCloser::operator()(fido_dev *key) const
{
    fido_dev_close(key);
    fido_dev_free(&key);
}

std::vector<SecurityKey> SecurityKeys::pluggedIn()
{
    fido_init(FIDO_DISABLE_U2F_FALLBACK);
    std::size_t found = 0;
    fido_dev_info_t *list = fido_dev_info_new(mostKeys);
    if (fido_dev_info_manifest(list, mostKeys, &found) != FIDO_OK)
        found = 0;
    std::vector<SecurityKey> keys;
    for (std::size_t i = 0; i < found; ++i) {
        fido_dev_t *key = fido_dev_new();
        if (fido_dev_open(key, fido_dev_info_path(fido_dev_info_ptr(list, i))) == FIDO_OK)
            keys.emplace_back(key);
        else
            fido_dev_free(&key);
    }
    fido_dev_info_free(&list, mostKeys);
    return keys;
}

/// Where the keys lie while they are asked: open from the first question to the last answer. Its functions
/// run on its thread, but for those that cancel.
class SecurityKeys::Desk {
public:
    explicit Desk(Finder find) : m_find(std::move(find)) {}

    /// How a key makes sure of its user.
    struct Means {
        bool pin = false;
        bool sensor = false;
    };

    std::size_t open()
    {
        m_keys = m_find();
        std::erase_if(m_keys, [](const SecurityKey &key) { return !fido_dev_is_fido2(key.get()); });
        for (const SecurityKey &key : m_keys)
            fido_dev_set_timeout(key.get(), answerPatience);
        return m_keys.size();
    }
    bool close()
    {
        m_keys.clear();
        return true;
    }
    Means means(std::size_t key) const
    {
        const fido_dev *it = m_keys.at(key).get();
        return {.pin = fido_dev_has_pin(it), .sensor = fido_dev_has_uv(it)};
    }
    std::optional<int> triesLeft(std::size_t key) const
    {
        int left = 0;
        return fido_dev_get_retry_count(m_keys.at(key).get(), &left) == FIDO_OK ? std::optional(left)
                                                                                : std::nullopt;
    }
    int put(std::size_t key, const Question &question, const char *pin)
    {
        if (!beginAnswer(m_keys.at(key).get()))
            return FIDO_ERR_KEEPALIVE_CANCEL;
        const int code = question(m_keys.at(key).get(), pin);
        return endAnswer() ? code : FIDO_ERR_KEEPALIVE_CANCEL;
    }

    bool isCancelled()
    {
        const std::lock_guard lock(m_lock);
        return m_isCancelled;
    }
    void beginRequest()
    {
        const std::lock_guard lock(m_lock);
        m_isCancelled = false;
    }
    /// Whether a key is being asked, which may not have heard it: one heeds it only while it waits.
    bool cancel()
    {
        const std::lock_guard lock(m_lock);
        m_isCancelled = true;
        if (m_asked != nullptr)
            fido_dev_cancel(m_asked);
        return m_asked != nullptr;
    }

    ThreadExecutor thread;

private:
    bool beginAnswer(fido_dev *key)
    {
        const std::lock_guard lock(m_lock);
        m_asked = m_isCancelled ? nullptr : key;
        return !m_isCancelled;
    }
    /// False when the answer comes too late.
    bool endAnswer()
    {
        const std::lock_guard lock(m_lock);
        m_asked = nullptr;
        return !m_isCancelled;
    }

    const Finder m_find;
    std::vector<SecurityKey> m_keys;
    std::mutex m_lock;
    fido_dev *m_asked = nullptr;
    bool m_isCancelled = false;
};

SecurityKeys::SecurityKeys(Finder find, std::unique_ptr<RetryTimer> timer)
    : m_desk(std::make_shared<Desk>(std::move(find))), m_timer(std::move(timer))
{
}

SecurityKeys::~SecurityKeys()
{
    // A key that does not hear it lets go when its own patience ends.
    m_desk->cancel();
}

void SecurityKeys::cancel()
{
    cancelAgain();
}

void SecurityKeys::cancelAgain()
{
    if (m_desk->cancel())
        m_timer->schedule(cancelInterval, [this] { cancelAgain(); });
}

// The thread's jobs hold the desk by its address: who waits for them holds it for good, and the last one to
// let go must not be the thread itself.

Task<int> SecurityKeys::askKey(SharedDesk desk, std::size_t key, Question question, PasskeyPrompts prompts)
{
    Desk *it = desk.get();
    const Desk::Means means = co_await runOn(desk->thread, [it, key] { return it->means(key); });
    if (!means.pin && !means.sensor)
        co_return FIDO_ERR_PIN_NOT_SET;
    bool bySensor = means.sensor;
    std::optional<int> triesLeft;
    while (!desk->isCancelled()) {
        std::optional<std::string> pin;
        if (!bySensor) {
            pin = co_await prompts.pin(triesLeft);
            if (!pin)
                co_return FIDO_ERR_KEEPALIVE_CANCEL;
        }
        prompts.touch();
        const int code = co_await runOn(desk->thread, [it, key, question, pin] {
            return it->put(key, question, pin ? pin->c_str() : nullptr);
        });
        if (bySensor && means.pin && (code == FIDO_ERR_UV_INVALID || code == FIDO_ERR_UV_BLOCKED)) {
            bySensor = false;
            continue;
        }
        if (code != FIDO_ERR_PIN_INVALID)
            co_return code;
        triesLeft = co_await runOn(desk->thread, [it, key] { return it->triesLeft(key); });
    }
    co_return FIDO_ERR_KEEPALIVE_CANCEL;
}

Task<int> SecurityKeys::ask(SharedDesk desk, Question question, PasskeyPrompts prompts)
{
    Desk *it = desk.get();
    desk->beginRequest();
    const std::size_t count = co_await runOn(desk->thread, [it] { return it->open(); });
    int code = FIDO_ERR_NOTFOUND;
    for (std::size_t key = 0; key < count; ++key) {
        code = co_await askKey(desk, key, question, prompts);
        if (code != FIDO_ERR_NO_CREDENTIALS && code != FIDO_ERR_PIN_NOT_SET)
            break;
    }
    co_await runOn(desk->thread, [it] { return it->close(); });
    co_return code;
}

Task<Result<PasskeyAssertion, PasskeyError>>
SecurityKeys::assertion(PasskeyAssertionOptions options, std::string clientData, PasskeyPrompts prompts)
{
    const auto answer = std::make_shared<PasskeyAssertion>();
    const Question question = [options = std::move(options), hash = sha256(clientData),
                               answer](fido_dev *key, const char *pin) {
        return assertWith(key, pin, options, hash, *answer);
    };
    const int code = co_await ask(m_desk, question, std::move(prompts));
    if (code != FIDO_OK)
        co_return failure(errorOf(code));
    co_return PasskeyAssertion(*answer);
}

Task<Result<PasskeyAttestation, PasskeyError>>
SecurityKeys::registration(PasskeyRegistrationOptions options, std::string clientData, PasskeyPrompts prompts)
{
    const auto answer = std::make_shared<PasskeyAttestation>();
    const Question question = [options = std::move(options), hash = sha256(clientData),
                               answer](fido_dev *key, const char *pin) {
        return registerWith(key, pin, options, hash, *answer);
    };
    const int code = co_await ask(m_desk, question, std::move(prompts));
    if (code != FIDO_OK)
        co_return failure(errorOf(code));
    co_return PasskeyAttestation(*answer);
}

std::unique_ptr<PasskeyPlatform> PasskeyPlatform::ofThisComputer()
{
    return std::make_unique<SecurityKeys>();
}

} // namespace orvane
