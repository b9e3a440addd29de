// The page opens its stream of events as it is loaded; here nobody sends any.
globalThis.EventSource = class {
  addEventListener() {}
};
