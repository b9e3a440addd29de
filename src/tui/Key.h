#pragma once

// A key as it was pressed: a named one, or a character.
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
        Redraw
    };

    Name name = None;
    char32_t character = 0;
};
