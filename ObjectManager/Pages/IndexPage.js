'use strict';

(() => {
  const search = document.getElementById('search');
  const filter = document.getElementById('filter');
  const count = document.getElementById('count');

  // What is searched of a class: all but the link to its XML Schema, which every class has.
  const textOf = (item) => Array.from(item.children)
    .filter((part) => !part.matches('a:not(:first-child)'))
    .map((part) => part.textContent.toLowerCase())
    .join(' ');
  const sections = Array.from(document.querySelectorAll('section'), (section) => ({
    section,
    classes: Array.from(section.querySelectorAll('li'), (item) => ({ item, text: textOf(item) })),
  }));
  const total = document.querySelectorAll('section li').length;

  const showMatches = () => {
    const words = filter.value.toLowerCase().split(/\s+/);
    let matches = 0;
    for (const { section, classes } of sections) {
      let matchesHere = 0;
      for (const { item, text } of classes) {
        const isMatch = words.every((word) => text.includes(word));
        item.hidden = !isMatch;
        matchesHere += isMatch ? 1 : 0;
      }
      section.hidden = matchesHere === 0 && filter.value.trim() !== '';
      matches += matchesHere;
    }
    count.textContent = `${matches} of ${total} classes`;
  };

  const readAddress = () => {
    const shared = new URLSearchParams(location.hash.slice(1)).get('filter');
    if (shared !== null) {
      filter.value = shared;
      showMatches();
    }
  };

  // Browsers take it amiss when the address changes with every key.
  let writing = 0;
  const writeAddress = () => {
    clearTimeout(writing);
    writing = setTimeout(() => {
      const value = filter.value.trim();
      const fragment = value === '' ? '' : `#filter=${encodeURIComponent(value)}`;
      history.replaceState(null, '', location.pathname + location.search + fragment);
    }, 300);
  };

  filter.addEventListener('input', () => {
    showMatches();
    writeAddress();
  });
  window.addEventListener('hashchange', readAddress);
  // Also when the browser brings back the page, and what was typed, without loading it.
  window.addEventListener('pageshow', showMatches);
  search.hidden = false;
  readAddress();
  showMatches();
})();
