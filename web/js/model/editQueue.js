// The edits of one list, one after the other, each with the revision that it was made for.
//
// An edit is made for the order of rows that the page shows: the device's, with the edits that are still on their way.
// So its positions hold when its turn comes, unless others changed the list meanwhile; then the device refuses it, the
// list is read again, and the edit finds its rows by what they are.

const ChangedStatus = 409;

export const isChanged = (error) => error?.status === ChangedStatus;

export class EditQueue {
  // `readOrder()`: the list as it is now, {revision, …}.
  constructor(readOrder) {
    this.readOrder = readOrder;
    this.waiting = 0;
    this.last = Promise.resolve();
    this.revision = undefined; // what the edits so far lead to; not known after one that the page does not show
  }

  // `send(state)` does it: {revision} when the edit's own positions hold, else what readOrder() gave.
  //   revision: of the rows that it was made for, undefined where they may be out of date
  //   isShown: the page shows the outcome already, and makes the next edit on top of it
  //   isLater: it is made for that very revision, and not for what the edits on their way lead to
  //   isPlain: it has no positions
  add({ send, revision, isShown = false, isLater = false, isPlain = false }) {
    if (this.waiting === 0) this.revision = revision;
    this.waiting += 1;
    const holds = () => this.revision !== undefined && (!isLater || this.revision === revision);
    const done = this.last.then(() => (isPlain ? this.sendPlain(send) : this.carryOut(holds, send, isShown))).finally(() => {
      this.waiting -= 1;
    });
    this.last = done.catch(() => {});
    return done;
  }

  sendPlain(send) {
    this.revision = undefined;
    return send({});
  }

  async carryOut(holds, send, isShown) {
    const held = holds();
    const { revision } = this;
    this.revision = undefined;
    if (held) {
      try {
        const result = await send({ revision });
        // Should the device count otherwise, it refuses the next edit, which then reads the list.
        if (isShown) this.revision = revision + 1;
        return result;
      } catch (error) {
        if (!isChanged(error)) throw error;
      }
    }
    return send(await this.readOrder());
  }
}
