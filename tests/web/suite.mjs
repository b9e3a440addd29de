// All tests of the page in one browser; every story has its own device.
import { runStories } from './support/story.mjs';
import './units/browserless.mjs';
import './units/rows.mjs';
import './units/edits.mjs';
import './units/undo.mjs';
import './units/helpers.mjs';
import './e2e/lists.mjs';
import './e2e/adding.mjs';
import './e2e/playing.mjs';
import './e2e/upnext.mjs';
import './e2e/reordering.mjs';
import './e2e/editing.mjs';
import './e2e/undoing.mjs';
import './e2e/together.mjs';
import './e2e/collections.mjs';
import './e2e/connection.mjs';
import './e2e/access.mjs';
import './e2e/door.mjs';
import './e2e/axe.mjs';
import './e2e/hand.mjs';
import './e2e/back.mjs';
import './e2e/forced.mjs';
import './e2e/slow.mjs';
import './e2e/installed.mjs';
import './e2e/walks.mjs';
import './e2e/large.mjs';

runStories();
