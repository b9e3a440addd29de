// All tests of the page in one browser; every story has its own device.
import { tellStories } from './support/story.mjs';
import './units/browserless.mjs';
import './units/rows.mjs';
import './units/edits.mjs';
import './units/undo.mjs';
import './units/helpers.mjs';
import './stories/lists.mjs';
import './stories/adding.mjs';
import './stories/playing.mjs';
import './stories/upnext.mjs';
import './stories/reordering.mjs';
import './stories/editing.mjs';
import './stories/undoing.mjs';
import './stories/together.mjs';
import './stories/collections.mjs';
import './stories/connection.mjs';
import './stories/access.mjs';
import './stories/door.mjs';
import './stories/large.mjs';

tellStories();
