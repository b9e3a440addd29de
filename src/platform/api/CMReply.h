#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "CMError.h"

// The answer to a request, once it is there. A handle: copies share one state. The first completion
// wins, later ones are ignored. Callbacks run once, on the worker's thread, at once when registered
// after completion. Dropping a reply cancels nothing; when the last handle of a pending one goes,
// it cannot be answered any more and the callbacks get the error `NotAnswered`. So the side that
// waits registers callbacks and lets go, and the side that answers keeps a copy. Everything here
// belongs to the worker's thread; other threads post to it first.
class ORVO_API_EXPORT CMVoidReply {
public:
    using Callback = std::function<void()>;
    using ErrorCallback = std::function<void(const CMError&)>;

    CMVoidReply();

    bool isFinished() const { return m_state->status != Status::Pending; }
    bool isError() const { return m_state->status == Status::Failed; }
    const CMError& error() const { return m_state->error; }

    void setError(const CMError& error) const;
    void setFinished() const;

    void onSuccess(const Callback& callback) const;
    void onError(const ErrorCallback& callback) const;
    void onFinished(const Callback& callback) const;

    // Returns at once when finished. Otherwise events are handled until the reply is there or the
    // time is over (milliseconds, negative: without end), so a module never calls it on a reply
    // that may still be pending.
    bool waitForFinished(int timeoutMs = -1) const;

protected:
    enum class Status { Pending, Succeeded, Failed };

    struct State {
        virtual ~State() = default;
        Status status = Status::Pending;
        CMError error;
        std::vector<std::function<void(const State&)>> callbacks;
    };

    // Takes the state over.
    explicit CMVoidReply(State* state) : m_state(state, abandon) {}
    bool isPending() const { return m_state->status == Status::Pending; }
    static void complete(State& state, Status status);
    static void abandon(State* state);
    void whenFinished(std::function<void(const State&)> callback) const;

    std::shared_ptr<State> m_state;
};

template <typename T>
class CMReply : public CMVoidReply {
public:
    CMReply() : CMVoidReply(new ValueState) {}

    const T& value() const { return static_cast<const ValueState*>(m_state.get())->value; }

    void setValue(const T& value) const {
        if (!isPending())
            return;
        static_cast<ValueState*>(m_state.get())->value = value;
        const std::shared_ptr<State> alive = m_state; // a callback may drop the last handle
        complete(*alive, Status::Succeeded);
    }

    using CMVoidReply::onSuccess;
    void onSuccess(const std::function<void(const T&)>& callback) const {
        whenFinished([callback](const State& state) {
            if (state.status == Status::Succeeded)
                callback(static_cast<const ValueState&>(state).value);
        });
    }

private:
    struct ValueState : State {
        T value{};
    };
};

template <typename T>
using CMReplyData = CMReply<T>;
