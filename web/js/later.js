// What the first rows on screen do without; app.js loads it when they are there.

export { keepPage } from './core/installed.js';
export { Edits } from './model/edits.js';
export { Music } from './model/music.js';
export { AddMenu, playMusic } from './view/addmenu.js';
export { Editing } from './view/editing.js';
export { emptyText } from './view/empty.js';
export { Finder } from './view/finder.js';
export { showHelp } from './view/help.js';
export { Menu } from './view/menu.js';
export { MenuEdits } from './view/menuedits.js';
export { MusicScreen } from './view/music.js';
export { PlayerBar } from './view/playerbar.js';
export { PlaylistFiles } from './view/playlistfiles.js';
export { ask } from './view/question.js';
export { showSettings } from './view/settingscard.js';
export { UndoBar } from './view/undobar.js';
export { UpNext } from './view/upnext.js';
