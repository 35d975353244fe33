// Keeps the page usable without a network: its files, fetched once for every build of it.
importScripts('files.js'); // fileNames and buildName, written by the build

const cacheName = `page-${self.buildName}`;

self.addEventListener('install', (event) => {
  event.waitUntil(caches.open(cacheName).then((cache) => cache.addAll(self.fileNames)));
  self.skipWaiting();
});

self.addEventListener('activate', (event) => {
  const drop = async () => {
    const names = await caches.keys();
    await Promise.all(names.filter((name) => name !== cacheName).map((name) => caches.delete(name)));
    await self.clients.claim();
  };
  event.waitUntil(drop());
});

self.addEventListener('fetch', (event) => {
  if (event.request.method !== 'GET') return;
  const find = () => caches.match(event.request, { ignoreSearch: true });
  event.respondWith(find().then((kept) => kept ?? fetch(event.request)));
});
