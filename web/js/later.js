// What the first rows on screen do without; app.js loads it when they are there.

export { Adding } from './model/adder.js';
export { Dragging } from './view/dragging.js';
export { Finder } from './view/finder.js';
export { showHelp } from './view/help.js';
export { Menu } from './view/menu.js';
export { PlayerBar } from './view/playerbar.js';
export { watchAdding } from './view/progress.js';
