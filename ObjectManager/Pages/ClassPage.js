'use strict';

(() => {
  // Where a page may not use the clipboard, as one that came over plain HTTP, it can still copy what
  // is selected.
  const copySelected = (text) => {
    const area = document.createElement('textarea');
    area.value = text;
    area.readOnly = true;
    document.body.append(area);
    area.select();
    const done = document.execCommand('copy');
    area.remove();
    return done;
  };

  const copy = async (text) => {
    try {
      await navigator.clipboard.writeText(text);
      return true;
    } catch {
      return copySelected(text);
    }
  };

  // What is copied of an example is the start of its program, too, if it has one.
  const textOf = (element) => {
    const start = document.getElementById(element.dataset.start);
    return (start ? start.textContent : '') + element.textContent;
  };

  for (const element of document.querySelectorAll('[data-copy]')) {
    const button = document.createElement('button');
    button.type = 'button';
    button.textContent = 'Copy';
    button.setAttribute('aria-label', `Copy ${element.dataset.copy}`);
    button.addEventListener('click', async () => {
      const done = await copy(textOf(element));
      button.textContent = done ? 'Copied' : 'Not copied';
      button.focus();
      setTimeout(() => { button.textContent = 'Copy'; }, 2000);
    });
    element.after(button);
  }

  // What an address leads to is not hidden.
  const showTarget = () => {
    const target = document.querySelector(':target');
    for (let each = target; each; each = each.parentElement) {
      if (each.localName === 'details') each.open = true;
    }
    if (target) target.scrollIntoView();
  };
  window.addEventListener('hashchange', showTarget);
  if (location.hash !== '') showTarget();
})();
