#include "PendingAnswer.h"

#include <QTimerEvent>

#include "ApiError.h"

void PendingAnswer::startTimer(int timeoutMs) {
    if (m_exchange)
        m_timer.start(timeoutMs, this);
}

void PendingAnswer::timerEvent(QTimerEvent* event) {
    if (event->timerId() == m_timer.timerId())
        answer([] {
            return ApiError::response(ApiError::Kind::Timeout,
                                      QStringLiteral("Nothing answered in time."));
        });
}

void PendingAnswer::fail(const CMError& error) {
    answer([&] { return ApiError::response(error); });
}

void PendingAnswer::answer(const std::function<HttpResponse()>& render) {
    if (!m_exchange)
        return;
    m_timer.stop();
    const std::shared_ptr<HttpExchange> exchange = std::move(m_exchange);
    m_exchange.reset();
    exchange->respond(render());
}
