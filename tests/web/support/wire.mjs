// A wire between the page and the device that can be cut and mended.

import { once } from 'node:events';
import { connect, createServer } from 'node:net';

export class Wire {
  constructor(device) {
    this.device = device;
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
    socket.pipe(onward).pipe(socket);
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
