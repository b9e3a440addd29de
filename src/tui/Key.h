#pragma once

// A key as it was pressed: a named one, a character, or what the mouse did.
struct Key {
    enum Name {
        None,
        Char,
        Up,
        Down,
        Left,
        Right,
        PageUp,
        PageDown,
        Home,
        End,
        Enter,
        Escape,
        Backspace,
        Delete,
        Redraw,
        Click,
        WheelUp,
        WheelDown
    };

    Name name = None;
    char32_t character = 0;
    // Where the mouse was.
    int row = 0;
    int column = 0;

    bool isSame(const Key& other) const {
        return name == other.name && character == other.character;
    }
};
