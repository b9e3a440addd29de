#pragma once

class Browser;
struct Key;

// What the keys do: in a text that is being typed first, then while finding, then everywhere.
class BrowserKeys {
public:
    static void press(Browser& browser, const Key& key);

private:
    static void pressInEdit(Browser& browser, const Key& key);
    static void pressInFinding(Browser& browser, const Key& key);
};
