#include "EngineEvents.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include "CMConnect.h"

EngineEvents::EngineEvents(std::function<void(const EngineEvent&)> receiver)
    : m_receiver(std::move(receiver)),
      m_wakeFd(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)),
      m_notifier(m_wakeFd, QSocketNotifier::Read) {
    CM_ASSERT(m_wakeFd >= 0, "eventfd");
    QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this] { deliver(); });
}

EngineEvents::~EngineEvents() {
    m_notifier.setEnabled(false);
    // The thread that pushed last is through with it.
    const std::lock_guard lock(m_mutex);
    close(m_wakeFd);
}

void EngineEvents::push(EngineEvent event) {
    const std::lock_guard lock(m_mutex);
    m_events.push_back(std::move(event));
    // Cannot fail but for a counter that is full, which wakes as well.
    [[maybe_unused]] const int result = eventfd_write(m_wakeFd, 1);
}

void EngineEvents::deliver() {
    eventfd_t count = 0;
    [[maybe_unused]] const int result = eventfd_read(m_wakeFd, &count);
    std::deque<EngineEvent> events;
    {
        const std::lock_guard lock(m_mutex);
        events.swap(m_events);
    }
    for (const EngineEvent& event : events)
        m_receiver(event);
}
