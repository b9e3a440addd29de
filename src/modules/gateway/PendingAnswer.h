#pragma once

#include <functional>
#include <memory>

#include <QBasicTimer>
#include <QObject>

#include "CMReply.h"
#include "HttpExchange.h"
#include "HttpMessages.h"

// An exchange that waits for a module's reply, and the time it may take. Kept alive by the reply's
// callbacks alone: a module that answers, or lets go of its request, ends it; one that keeps silent
// costs the client a timeout (504) and nothing else. Worker's thread.
class PendingAnswer : public QObject {
    Q_OBJECT
public:
    explicit PendingAnswer(const std::shared_ptr<HttpExchange>& exchange) : m_exchange(exchange) {}

    // Sends with `send` and answers with `render` of what comes back, or with the error. `send`
    // gets the reply to pass on and alone keeps it, so that a dropped request is noticed at
    // once.
    template <typename Reply, typename Send, typename Render>
    static void request(const std::shared_ptr<HttpExchange>& exchange, int timeoutMs, Send send,
                        Render render) {
        auto pending = std::make_shared<PendingAnswer>(exchange);
        {
            const Reply reply;
            reply.onError([pending](const CMError& error) { pending->fail(error); });
            whenAnswered(reply, pending, render);
            send(reply);
        }
        pending->startTimer(timeoutMs);
    }

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    template <typename T, typename Render>
    static void whenAnswered(const CMReply<T>& reply, const std::shared_ptr<PendingAnswer>& pending,
                             Render render) {
        reply.onSuccess(
            [pending, render](const T& value) { pending->answer([&] { return render(value); }); });
    }
    template <typename Render>
    static void whenAnswered(const CMVoidReply& reply,
                             const std::shared_ptr<PendingAnswer>& pending, Render render) {
        reply.onSuccess([pending, render] { pending->answer(render); });
    }

    void startTimer(int timeoutMs);
    void fail(const CMError& error);
    // Nothing is rendered for a client that has its answer.
    void answer(const std::function<HttpResponse()>& render);

    std::shared_ptr<HttpExchange> m_exchange; // null once answered
    QBasicTimer m_timer;
};
