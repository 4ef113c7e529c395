#pragma once

#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>

namespace hazelmark {

/// Broadcasts by name, without a sender: the only link from menus and window events to the main screen.
///
/// `post` calls every observer of the name at once, in the order of registration, and returns when the last one has.
/// An observer may register or remove observers (itself too) while it is called: one that is registered during a post
/// is first called by the next post, one that is removed during a post is not called any more.
/// Main thread only.
class NotificationCenter
{
    struct State;

public:
    using Handler = std::function<void(const QVariantMap &userInfo)>;

    /// A registration: the observer is removed when its token is destroyed. A token may outlive the centre.
    class [[nodiscard]] Token
    {
    public:
        Token() = default;
        ~Token();
        Token(Token &&other) noexcept;
        Token &operator=(Token &&other) noexcept;

        void remove();

    private:
        friend class NotificationCenter;
        Token(std::weak_ptr<State> state, quint64 id);

        std::weak_ptr<State> m_state;
        quint64 m_id = 0;
    };

    NotificationCenter();
    ~NotificationCenter();
    NotificationCenter(const NotificationCenter &) = delete;
    NotificationCenter &operator=(const NotificationCenter &) = delete;

    static NotificationCenter &defaultCenter();

    Token addObserver(const QString &name, Handler handler);
    void post(const QString &name, const QVariantMap &userInfo = {});

private:
    std::shared_ptr<State> m_state;
};

} // namespace hazelmark
