#include "CMReply.h"

#include <QEventLoop>
#include <QTimer>

CMVoidReply::CMVoidReply() : CMVoidReply(new State) {}

void CMVoidReply::complete(State& state, Status status) {
    state.status = status;
    const auto callbacks = std::move(state.callbacks);
    state.callbacks.clear();
    for (const auto& callback : callbacks)
        callback(state);
}

void CMVoidReply::abandon(State* state) {
    if (state->status == Status::Pending && !state->callbacks.empty()) {
        state->error =
            CMError(CMError::NotAnswered(), TrString("CMReply", "The request was not answered."),
                    CMError::DefaultTitle());
        complete(*state, Status::Failed);
    }
    delete state;
}

void CMVoidReply::setError(const CMError& error) const {
    if (!isPending())
        return;
    const std::shared_ptr<State> alive = m_state; // a callback may drop the last handle
    alive->error = error;
    complete(*alive, Status::Failed);
}

void CMVoidReply::setFinished() const {
    if (!isPending())
        return;
    const std::shared_ptr<State> alive = m_state;
    complete(*alive, Status::Succeeded);
}

void CMVoidReply::whenFinished(std::function<void(const State&)> callback) const {
    if (isPending()) {
        m_state->callbacks.push_back(std::move(callback));
        return;
    }
    const std::shared_ptr<State> alive = m_state; // a callback may drop the last handle
    callback(*alive);
}

void CMVoidReply::onFinished(const Callback& callback) const {
    whenFinished([callback](const State&) { callback(); });
}

void CMVoidReply::onSuccess(const Callback& callback) const {
    whenFinished([callback](const State& state) {
        if (state.status == Status::Succeeded)
            callback();
    });
}

void CMVoidReply::onError(const ErrorCallback& callback) const {
    whenFinished([callback](const State& state) {
        if (state.status == Status::Failed)
            callback(state.error);
    });
}

bool CMVoidReply::waitForFinished(int timeoutMs) const {
    if (isFinished())
        return true;
    QEventLoop loop;
    QTimer timer;
    if (timeoutMs >= 0) {
        timer.setSingleShot(true);
        QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
        timer.start(timeoutMs);
    }
    // The loop is gone after a time-out while the callback stays registered.
    const auto waiting = std::make_shared<QEventLoop*>(&loop);
    onFinished([waiting] {
        if (*waiting)
            (*waiting)->quit();
    });
    loop.exec();
    *waiting = nullptr;
    return isFinished();
}
