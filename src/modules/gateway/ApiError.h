#pragma once

#include "CMError.h"
#include "HttpMessages.h"

// The one shape of every refusal: {"error": {"name", "title", "message"}}.
namespace ApiError {

// Statuses that the gateway itself decides on, each with its name and its title for people.
enum class Kind {
    Malformed,
    Unauthorized,
    Forbidden,
    NoSuchResource,
    MethodNotAllowed,
    TooLarge,
    AnswerTooLarge,
    TooManyAttempts,
    TooManyRequests,
    HeadersTooLarge,
    TooManyReaders,
    TooManyBodies,
    TooManyAnswers,
    Timeout
};

HttpResponse response(Kind kind, const QString& message);
// What a module answered: nothing at that path is 404, a state that is no longer so is 409,
// everything else is a refusal.
HttpResponse response(const CMError& error);

} // namespace ApiError
