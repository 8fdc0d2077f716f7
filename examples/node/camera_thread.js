// The one thread that calls the library, a worker of microscope.js. The library's timers measure and
// poll the button when this thread dispatches its messages.
// Told: {id, name, parameters} calls a function, {stop} ends. Tells: {opened}, {id, result},
// {magnification, width_mm}, {button}.
'use strict';
const { parentPort, workerData } = require('node:worker_threads');
const koffi = require('koffi');
const { ButtonHandler, load } = require('./qvx64');

const { device } = workerData;
const PM_REMOVE = 1, SIZE_OF_MSG = 48, BETWEEN_MESSAGES_MS = 10;

const qvx = load();
const user32 = koffi.load('user32.dll');
const PeekMessageW =
    user32.func('int PeekMessageW(void *message, void *, uint32_t, uint32_t, uint32_t remove)');
const DispatchMessageW = user32.func('intptr_t DispatchMessageW(void *message)');

const message = Buffer.alloc(SIZE_OF_MSG);
let shown = 0;

// One message at a time: a camera that answers slowly has its next timer due when one is done, and
// the calls that are asked for want their turn, too.
function dispatchMessage() {
  if (PeekMessageW(message, null, 0, 0, PM_REMOVE)) DispatchMessageW(message);
  const magnification = qvx.GetMAG(device);
  if (magnification === shown) return;
  shown = magnification;
  parentPort.postMessage({ magnification, width_mm: qvx.FOVx(device, magnification) / 1000 });
}

function run() {
  const pump = setInterval(dispatchMessage, BETWEEN_MESSAGES_MS);
  const button = koffi.register(() => parentPort.postMessage({ button: true }), ButtonHandler);
  qvx.SetEventCallback(button);
  qvx.EnablePressKey(1);  // after Init, which may switch it off
  parentPort.on('message', ({ stop, id, name, parameters }) => {
    if (!stop) return parentPort.postMessage({ id, result: qvx[name](...parameters) });
    clearInterval(pump);
    // The library keeps the callback: take it back before what it calls is gone.
    qvx.EnablePressKey(0);
    qvx.SetEventCallback(null);
    koffi.unregister(button);
    parentPort.close();
  });
}

qvx.SetVideoDeviceIndex(device);
const opened = qvx.Init() !== 0;
if (opened) run();
parentPort.postMessage({ opened });
