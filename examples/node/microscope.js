// A camera on a thread of its own: node microscope.js [seconds [still.jpg]]
'use strict';
const { EventEmitter, once } = require('node:events');
const path = require('node:path');
const { setTimeout: pause } = require('node:timers/promises');
const { Worker } = require('node:worker_threads');

const { QVX_WIFI_CAMERA, QVX_LED_ON } = require('./qvx64');

// Emits 'magnification' (x, field of view in mm) and 'button'. Nothing of it blocks.
class Camera extends EventEmitter {
  // Null when there is no camera.
  static async open(device) {
    const worker =
        new Worker(path.join(__dirname, 'camera_thread.js'), { workerData: { device } });
    const [{ opened }] = await once(worker, 'message');
    return opened ? new Camera(worker) : null;
  }

  constructor(worker) {
    super();
    this.worker = worker;
    this.waiting = new Map();
    this.calls = 0;
    worker.on('message', ({ id, result, magnification, width_mm, button }) => {
      if (button) return this.emit('button');
      if (magnification !== undefined) return this.emit('magnification', magnification, width_mm);
      this.waiting.get(id)(result);
      this.waiting.delete(id);
    });
  }

  // Calls a function of the library on the camera's thread; a promise of what it returns.
  call(name, ...parameters) {
    return new Promise((resolve) => {
      this.waiting.set(++this.calls, resolve);
      this.worker.postMessage({ id: this.calls, name, parameters });
    });
  }

  async close() {
    this.worker.postMessage({ stop: true });
    await once(this.worker, 'exit');
  }
}

async function main(seconds = '5', still = 'still.jpg') {
  const camera = await Camera.open(QVX_WIFI_CAMERA);
  if (!camera) {
    console.error('no camera');
    return 1;
  }
  camera.on('magnification', (x, width_mm) => console.log(
      `magnification ${x.toFixed(2)}, field of view ${width_mm.toFixed(3)} mm`));
  camera.on('button', () => console.log('button'));
  await camera.call('SetLEDState', QVX_WIFI_CAMERA, QVX_LED_ON);
  const saved = await camera.call('GetWiFiImage', still);
  console.log(saved ? 'still in' : 'cannot write', still);
  await pause(Number(seconds) * 1000);
  await camera.close();
  return saved ? 0 : 1;
}

module.exports = { Camera };
if (require.main === module) {
  main(...process.argv.slice(2)).then((status) => { process.exitCode = status; });
}
