#pragma once

#include <QByteArray>

// Where RapidJSON's writer puts its text: grows as it is filled, up to a limit. Beyond the limit
// it is full for good, gives its memory back and forgets what is written. A value on its writer's
// stack; never fails.
class JsonBuffer {
public:
    using Ch = char;

    // At least 1.
    explicit JsonBuffer(int maxBytes);

    void Put(char c) {
        if (m_at == m_end)
            makeRoom();
        *m_at++ = c;
    }
    void Flush() {}

    bool isFull() const { return m_isFull; }
    // What was written, empty when it was more than the limit. Good for once.
    QByteArray take();

private:
    void makeRoom();

    int m_maxBytes;
    QByteArray m_bytes; // all of them are room
    char* m_at = nullptr;
    char* m_end = nullptr;
    bool m_isFull = false;
};

// RapidJSON's encodings look for it beside the stream.
inline void PutUnsafe(JsonBuffer& buffer, char c) {
    buffer.Put(c);
}
