import { startApp } from './app.js';

startApp();
