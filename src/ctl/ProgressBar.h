#pragma once

#include <QString>

// A line on stderr that shows how far a long work is, when stderr is a terminal; nothing otherwise.
// Takes itself away at the end.
class ProgressBar {
public:
    explicit ProgressBar(const QString& label);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    // With an unknown total (0) only the count is shown.
    void show(int done, int total);
    static QString line(const QString& label, int done, int total);

private:
    QString m_label;
    bool m_visible;
    bool m_shown = false;
};
