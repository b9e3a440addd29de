// The page opens its stream of events as it is loaded; here none come.
globalThis.EventSource = class {
  addEventListener() {}
};
