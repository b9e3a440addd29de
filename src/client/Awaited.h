#pragma once

#include <functional>
#include <optional>

#include <QEventLoop>

// Runs the event loop until the answer is there, for a program that has nothing else to do:
//   awaited<ApiAnswer>([&](const auto& done) { api.value(path, done); })
template <typename Answer>
Answer awaited(const std::function<void(const std::function<void(const Answer&)>& done)>& begin) {
    QEventLoop loop;
    std::optional<Answer> result;
    begin([&](const Answer& answer) {
        result = answer;
        loop.quit();
    });
    while (!result)
        loop.exec();
    return *result;
}
