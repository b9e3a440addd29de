// A wire between the page and the device that can be cut and mended, and slow: a request and its answer take so many
// milliseconds on it besides the device's own.

import { once } from 'node:events';
import { connect, createServer } from 'node:net';

export class Wire {
  constructor(device) {
    this.device = device;
    this.delay = 0;
    this.sockets = new Set();
    this.asked = ''; // what the page sent since the wire was cut
    this.server = createServer((socket) => this.join(socket));
  }

  async lay() {
    this.server.listen(0, '127.0.0.1');
    await once(this.server, 'listening');
    this.url = `http://127.0.0.1:${this.server.address().port}`;
  }

  join(socket) {
    if (this.isCut) {
      socket.destroy();
      return;
    }
    const onward = connect(this.device.port, '127.0.0.1');
    for (const end of [socket, onward]) {
      this.sockets.add(end);
      end.on('error', () => {});
      end.on('close', () => {
        socket.destroy();
        onward.destroy();
        this.sockets.delete(end);
      });
    }
    socket.on('data', (data) => (this.asked += data.toString('latin1')));
    this.carry(socket, onward);
    this.carry(onward, socket);
  }

  // From now on, also for what is connected already.
  slow(thereAndBack) {
    this.delay = thereAndBack / 2;
  }

  // What was sent first arrives first, also at the end.
  carry(from, to) {
    const later = (send) => (this.delay ? setTimeout(send, this.delay) : send());
    from.on('data', (data) => later(() => to.destroyed || to.write(data)));
    from.on('end', () => later(() => to.destroyed || to.end()));
  }

  cut() {
    this.isCut = true;
    this.asked = '';
    for (const socket of this.sockets) socket.destroy();
  }

  mend() {
    this.isCut = false;
  }

  end() {
    this.cut();
    this.server.close();
  }
}
