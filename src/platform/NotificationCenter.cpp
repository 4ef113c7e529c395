#include "NotificationCenter.h"

#include "ProcessWide.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace hazelmark {

struct NotificationCenter::State
{
    struct Observer
    {
        quint64 id;
        QString name;
        Handler handler;
        bool removed = false;
    };

    // Shared, so that a handler that removes itself, or the whole centre, goes on running in memory that is there.
    std::vector<std::shared_ptr<Observer>> observers;
    quint64 lastId = 0;
};

NotificationCenter::Token::Token(std::weak_ptr<State> state, quint64 id)
    : m_state(std::move(state))
    , m_id(id)
{
}

NotificationCenter::Token::~Token()
{
    remove();
}

NotificationCenter::Token::Token(Token &&other) noexcept
    : m_state(std::exchange(other.m_state, {}))
    , m_id(std::exchange(other.m_id, 0))
{
}

NotificationCenter::Token &NotificationCenter::Token::operator=(Token &&other) noexcept
{
    if (this != &other) {
        remove();
        m_state = std::exchange(other.m_state, {});
        m_id = std::exchange(other.m_id, 0);
    }
    return *this;
}

void NotificationCenter::Token::remove()
{
    const std::shared_ptr<State> state = std::exchange(m_state, {}).lock();
    if (!state)
        return;
    const auto found = std::find_if(state->observers.begin(), state->observers.end(),
                                    [this](const auto &observer) { return observer->id == m_id; });
    if (found == state->observers.end())
        return;
    // What the handler captured may remove further observers when it goes: it goes last.
    const std::shared_ptr<State::Observer> observer = *found;
    observer->removed = true;
    state->observers.erase(found);
}

NotificationCenter::NotificationCenter()
    : m_state(std::make_shared<State>())
{
}

NotificationCenter::~NotificationCenter() = default;

NotificationCenter &NotificationCenter::defaultCenter()
{
    return ProcessWide<NotificationCenter>::instance();
}

NotificationCenter::Token NotificationCenter::addObserver(const QString &name, Handler handler)
{
    const quint64 id = ++m_state->lastId;
    m_state->observers.push_back(std::make_shared<State::Observer>(State::Observer{id, name, std::move(handler)}));
    return Token(m_state, id);
}

void NotificationCenter::post(const QString &name, const QVariantMap &userInfo)
{
    const auto observers = m_state->observers; // those of this moment
    for (const auto &observer : observers) {
        if (!observer->removed && observer->name == name)
            observer->handler(userInfo);
    }
}

} // namespace hazelmark
