#pragma once

#include <QString>
#include <QVector>

class Browser;
struct Key;

// What keys do, for the list of them.
struct KeyNote {
    QString does;
    QString keys;
};

// What the keys do: in a text that is being typed first, then while finding, then everywhere. One
// table says what each does and tells it to people.
class BrowserKeys {
public:
    static void press(Browser& browser, const Key& key);
    static QVector<KeyNote> notes();

private:
    static void pressInEdit(Browser& browser, const Key& key);
    static void pressInFinding(Browser& browser, const Key& key);
    static void pressInList(Browser& browser, const Key& key);
};
